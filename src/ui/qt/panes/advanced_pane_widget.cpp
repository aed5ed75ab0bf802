#include "ui/qt/panes/advanced_pane_widget.h"

#include "ui/qt/controls/buttons.h"
#include "ui/qt/controls/icons.h"
#include "ui/qt/controls/inputs.h"
#include "ui/qt/controls/settings_group.h"

#include <QClipboard>
#include <QDateTime>
#include <QGuiApplication>
#include <QLocale>
#include <QSignalBlocker>

namespace tavrin {
namespace {

void copy(const std::string& text) {
    QGuiApplication::clipboard()->setText(qText(text));
}

QString dateText(Timestamp time) {
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(milliseconds), QLocale::LongFormat);
}

/// A name and what it stands for.
QWidget* makeFactRow(const QString& name, const QString& value) {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    setRowMargins(*line);
    line->setContentsMargins(line->contentsMargins().left(), 7, line->contentsMargins().right(), 7);
    line->setSpacing(16);
    auto* label = makeText(name, TextRole::secondary);
    label->setFixedWidth(label->fontMetrics().averageCharWidth() * 19);
    line->addWidget(label, 0, Qt::AlignTop);
    auto* text = new SelectableText(value, name);
    // Tab leads to what is long; the rest is read with the screen reader's own keys.
    text->setFocusPolicy(value.contains(QLatin1Char('\n')) ? Qt::StrongFocus : Qt::ClickFocus);
    line->addWidget(text, 1);
    return row;
}

QHBoxLayout* makeButtonLine(std::initializer_list<QWidget*> buttons) {
    auto* line = new QHBoxLayout;
    line->setSpacing(8);
    line->addStretch(1);
    for (QWidget* button : buttons)
        line->addWidget(button);
    return line;
}

} // namespace

AdvancedPaneWidget::AdvancedPaneWidget(const SettingsCollaborators& collaborators,
                                       bool& isTroubleshootingExpanded)
    : pane_(collaborators, isTroubleshootingExpanded) {
    buildPermission();
    buildLastAttempt();
    buildRestoring();
    buildTroubleshooting();
    showState();
    followLayoutWithTab(*window());
    subscription_ = pane_.changed.connect([this] { showState(); });
}

void AdvancedPaneWidget::buildPermission() {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    setRowMargins(*line);
    line->setSpacing(12);
    permissionIcon_ = new QLabel;
    line->addWidget(permissionIcon_, 0, Qt::AlignTop);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    permissionTitle_ = makeText({});
    permissionMessage_ = makeText({}, TextRole::secondary);
    texts->addWidget(permissionTitle_);
    texts->addWidget(permissionMessage_);
    line->addLayout(texts, 1);
    auto* recheck = new ActionButton(QStringLiteral("Recheck"));
    recheck->setAccessibleName(QStringLiteral("Recheck permission"));
    connect(recheck, &QPushButton::clicked, this, [this] { pane_.recheckPermission(); });
    line->addWidget(recheck, 0, Qt::AlignVCenter);
    auto* rows = new SettingsGroup;
    rows->addRow(row);
    addSection(sections(), QStringLiteral("Permission"), {}, rows);
}

void AdvancedPaneWidget::buildLastAttempt() {
    auto* content = new QWidget;
    auto* lines = new QVBoxLayout(content);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(8);
    attemptRows_ = new SettingsGroup;
    lines->addWidget(attemptRows_);
    copyAttemptButton_ = new ActionButton(QStringLiteral("Copy"));
    copyAttemptButton_->setAccessibleName(QStringLiteral("Copy the last restore attempt"));
    connect(copyAttemptButton_, &QPushButton::clicked, this, [this] { copy(pane_.lastAttemptText()); });
    lines->addLayout(makeButtonLine({copyAttemptButton_}));
    addSection(sections(), QStringLiteral("Last Restore Attempt"), {}, content);
    attemptRows_->addRow(makeNoteRow(qText(AdvancedPane::noAttemptText)));
}

void AdvancedPaneWidget::buildRestoring() {
    clusterSwitch_ = new SwitchControl(qText(AdvancedPane::clusterLabel));
    connect(clusterSwitch_, &QCheckBox::toggled, this,
            [this](bool isOn) { pane_.setClustersExtraAppWindows(isOn); });
    auto* rows = new SettingsGroup;
    rows->addRow(makeSwitchRow(qText(AdvancedPane::clusterLabel), qText(AdvancedPane::clusterExplanation),
                               clusterSwitch_));
    addSection(sections(), QStringLiteral("Restoring"), {}, rows);
}

void AdvancedPaneWidget::buildTroubleshooting() {
    auto* content = new QWidget;
    auto* lines = new QVBoxLayout(content);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(8);
    foldRow_ = new FoldRow(QStringLiteral("Troubleshooting"));
    connect(foldRow_, &QPushButton::clicked, this,
            [this] { pane_.setTroubleshootingExpanded(!pane_.isTroubleshootingExpanded()); });
    reportRows_ = new SettingsGroup(SettingsGroup::Frame::none);
    auto* group = new SettingsGroup;
    group->addRow(foldRow_);
    group->addRow(reportRows_);
    lines->addWidget(group);

    reportActions_ = new QWidget;
    auto* inner = new QVBoxLayout(reportActions_);
    inner->setContentsMargins(0, 0, 0, 0);
    inner->setSpacing(8);
    folderMessage_ = makeText({}, TextRole::warning);
    folderMessage_->hide();
    inner->addWidget(folderMessage_);
    auto* openFolder = new ActionButton(QStringLiteral("Open Data Folder"));
    connect(openFolder, &QPushButton::clicked, this, [this] {
        const bool isOpen = pane_.openDataDirectory();
        folderMessage_->setText(QStringLiteral("The data folder could not be opened."));
        folderMessage_->setVisible(!isOpen);
    });
    auto* copyReport = new ActionButton(QStringLiteral("Copy Report"));
    copyReport->setToolTip(QStringLiteral("Copies all of this as text, without window titles."));
    copyReport->setAccessibleDescription(copyReport->toolTip());
    connect(copyReport, &QPushButton::clicked, this, [this] { copy(pane_.report().text()); });
    inner->addLayout(makeButtonLine({openFolder, copyReport}));
    lines->addWidget(reportActions_);
    addSection(sections(), {}, {}, content);
}

void AdvancedPaneWidget::showState() {
    const int side = fontMetrics().height() * 3 / 2;
    const bool isGranted = pane_.isPermissionGranted();
    permissionIcon_->setPixmap(symbolIcon(isGranted ? QStringLiteral("checkmark.circle.fill")
                                                    : QStringLiteral("exclamationmark.triangle.fill"),
                                          isGranted ? accentLineColor(palette()) : warningColor(palette()))
                                   .pixmap(QSize(side, side), devicePixelRatioF()));
    permissionTitle_->setText(qText(pane_.permissionTitle()));
    permissionMessage_->setText(qText(pane_.permissionMessage()));
    showLastAttempt();
    {
        const QSignalBlocker blocker(clusterSwitch_);
        clusterSwitch_->setChecked(pane_.clustersExtraAppWindows());
    }
    const bool isExpanded = pane_.isTroubleshootingExpanded();
    foldRow_->setExpanded(isExpanded);
    reportRows_->setVisible(isExpanded);
    reportActions_->setVisible(isExpanded);
    if (isExpanded)
        showReport();
}

void AdvancedPaneWidget::showLastAttempt() {
    const auto& attempt = pane_.lastAttempt();
    copyAttemptButton_->setVisible(attempt.has_value());
    if (attempt == shownAttempt_)
        return;
    shownAttempt_ = attempt;
    attemptRows_->clear();
    if (!attempt)
        return;
    attemptRows_->addRow(makeFactRow(QStringLiteral("When"), dateText(attempt->date)));
    attemptRows_->addRow(makeFactRow(QStringLiteral("Trigger"), qText(displayName(attempt->trigger))));
    attemptRows_->addRow(makeFactRow(QStringLiteral("Layout"), qText(attempt->layoutName)));
    attemptRows_->addRow(makeFactRow(QStringLiteral("Kind"), qText(kindText(attempt->layoutKind))));
    attemptRows_->addRow(makeFactRow(QStringLiteral("Result"), qText(countsText(attempt->result))));
    QStringList errors;
    for (const std::string& error : attempt->result.errors)
        errors << qText(error);
    QStringList notes;
    for (const std::string& note : attempt->result.notes)
        notes << qText(note);
    if (!notes.isEmpty())
        attemptRows_->addRow(makeFactRow(QStringLiteral("Notes"), notes.join(QLatin1Char('\n'))));
    if (!errors.isEmpty())
        attemptRows_->addRow(makeFactRow(QStringLiteral("Errors"), errors.join(QLatin1Char('\n'))));
}

void AdvancedPaneWidget::showReport() {
    const TroubleshootingReport& report = pane_.report();
    if (shownReport_ == report)
        return;
    shownReport_ = report;
    reportRows_->clear();
    for (const auto& line : report.program)
        reportRows_->addRow(makeFactRow(qText(line.label), qText(line.value)));
    for (const auto& display : report.displays) {
        QStringList facts;
        for (const auto& line : display.lines)
            facts << QStringLiteral("%1: %2").arg(qText(line.label), qText(line.value));
        reportRows_->addRow(makeFactRow(qText(display.title), facts.join(QLatin1Char('\n'))));
    }
    reportRows_->addRow(makeFactRow(QStringLiteral("Arrangement"), qText(report.arrangementSignature)));
    reportRows_->addRow(makeFactRow(QStringLiteral("Setup"), qText(report.setup)));
    reportRows_->addRow(makeFactRow(QStringLiteral("Data"), qText(report.dataDirectory.string())));
}

} // namespace tavrin

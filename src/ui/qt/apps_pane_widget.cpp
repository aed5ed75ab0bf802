#include "ui/qt/apps_pane_widget.h"

#include "ui/qt/application_icon.h"
#include "ui/qt/settings_group.h"
#include "ui/qt/symbol_icon.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QToolButton>

namespace tavrin {
namespace {

QLabel* makeIcon(const QIcon& icon) {
    auto* label = new QLabel;
    const int side = label->fontMetrics().height() * 3 / 2;
    label->setPixmap(icon.pixmap(QSize(side, side), label->devicePixelRatioF()));
    label->setFixedSize(side, side);
    return label;
}

QWidget* makeApplicationRow(const QIcon& icon, const QString& title, const QString& subtitle,
                            QWidget* control) {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    setRowMargins(*line);
    line->setSpacing(12);
    line->addWidget(makeIcon(icon));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(1);
    texts->addWidget(makeText(title));
    if (!subtitle.isEmpty())
        texts->addWidget(makeText(subtitle, TextRole::secondary));
    line->addLayout(texts, 1);
    line->addWidget(control);
    return row;
}

} // namespace

AppsPaneWidget::AppsPaneWidget(const SettingsCollaborators& collaborators)
    : pane_(collaborators.settingsStore, collaborators.windowProvider, collaborators.applicationCatalog,
            collaborators.processIdentifier) {
    auto* excluded = new QWidget;
    auto* lines = new QVBoxLayout(excluded);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(10);
    excludedRows_ = new SettingsGroup;
    lines->addWidget(excludedRows_);
    lines->addWidget(makeAddLine());
    addSection(sections(), qText(ExclusionListView::title), qText(ExclusionListView::explanation), excluded);
    openRows_ = new SettingsGroup;
    addSection(sections(), QStringLiteral("Apps with Open Windows"), {}, openRows_);
    subscription_ = pane_.exclusions.changed.connect([this] { showState(); });
}

void AppsPaneWidget::appear() {
    areListsStale_ = true;
    pane_.exclusions.appear();
}

QWidget* AppsPaneWidget::makeAddLine() {
    auto* content = new QWidget;
    auto* line = new QHBoxLayout(content);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    field_ = new QLineEdit;
    field_->setPlaceholderText(qText(ExclusionListView::placeholder));
    field_->setAccessibleName(QStringLiteral("Bundle ID"));
    field_->setMaxLength(255);
    addButton_ = makeButton(QStringLiteral("Add App"));
    field_->setMinimumHeight(addButton_->minimumHeight());
    connect(field_, &QLineEdit::textChanged, this,
            [this](const QString& text) { pane_.exclusions.setNewBundleID(text.toStdString()); });
    connect(field_, &QLineEdit::returnPressed, this, [this] { pane_.exclusions.add(); });
    connect(addButton_, &QPushButton::clicked, this, [this] { pane_.exclusions.add(); });
    line->addWidget(field_, 1);
    line->addWidget(addButton_);
    return content;
}

QWidget* AppsPaneWidget::makeExcludedRow(const std::string& bundleID) {
    auto* button = new QToolButton;
    button->setIcon(symbolIcon(QStringLiteral("minus.circle.fill"), warningColor(palette())));
    const int side = button->fontMetrics().height() * 5 / 4;
    button->setIconSize({side, side});
    button->setAutoRaise(true);
    const QString name = QStringLiteral("Remove ") + qText(bundleID);
    button->setAccessibleName(name);
    button->setToolTip(name);
    button->setFocusPolicy(Qt::StrongFocus);
    connect(button, &QToolButton::clicked, this, [this, bundleID] {
        const std::string removed = bundleID;
        field_->setFocus();
        pane_.exclusions.remove(removed);
    });
    return makeApplicationRow(applicationIconOrPlaceholder(pane_.iconName(bundleID)), qText(bundleID), {},
                              button);
}

QWidget* AppsPaneWidget::makeOpenRow(const OpenApplication& application) {
    auto* button = makeButton(QStringLiteral("Exclude"));
    button->setAccessibleName(QStringLiteral("Exclude %1").arg(qText(application.name)));
    connect(button, &QPushButton::clicked, this, [this, bundleID = application.bundleIdentifier] {
        const std::string added = bundleID;
        pane_.exclusions.addRunning(added);
    });
    return makeApplicationRow(applicationIconOrPlaceholder(application.iconName), qText(application.name),
                              qText(application.bundleIdentifier), button);
}

void AppsPaneWidget::showState() {
    const QString text = qText(pane_.exclusions.newBundleID());
    if (field_->text() != text) {
        const QSignalBlocker blocker(field_);
        field_->setText(text);
    }
    addButton_->setEnabled(pane_.exclusions.canAdd());
    showLists();
}

void AppsPaneWidget::showLists() {
    const auto& excluded = pane_.exclusions.excludedBundleIDs();
    if (!areListsStale_ && excluded == shownExcluded_)
        return;
    areListsStale_ = false;
    const auto open = pane_.openApplications();
    shownExcluded_ = excluded;
    excludedRows_->clear();
    if (excluded.empty())
        excludedRows_->addRow(makeNoteRow(qText(ExclusionListView::emptyText)));
    for (const std::string& bundleID : excluded)
        excludedRows_->addRow(makeExcludedRow(bundleID));
    openRows_->clear();
    if (open.empty())
        openRows_->addRow(makeNoteRow(QStringLiteral("No other apps have windows open.")));
    for (const OpenApplication& application : open)
        openRows_->addRow(makeOpenRow(application));
    followLayoutWithTab(*this);
}

} // namespace tavrin

#include "ui/qt/panes/shortcuts_pane_widget.h"

#include "ui/qt/controls/buttons.h"
#include "ui/qt/controls/icons.h"
#include "ui/qt/controls/settings_group.h"
#include "ui/qt/controls/style.h"
#include "ui/qt/panes/settings_pane_widget.h"

#include <QPainter>

namespace tavrin {

RecorderField::RecorderField(ShortcutRecorderView& view, SymbolButton* clearButton)
    : view_(view), clearButton_(clearButton) {
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->addStretch(1);
    line->addWidget(clearButton);
}

QSize RecorderField::sizeHint() const {
    const int text = fontMetrics().horizontalAdvance(QStringLiteral("Press shortcut…"));
    return {text + 2 * clearButton_->sizeHint().width(), controlHeight(fontMetrics())};
}

void RecorderField::focusOutEvent(QFocusEvent* event) {
    view_.cancelRecording();
    QPushButton::focusOutEvent(event);
}

void RecorderField::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const ShortcutRecorder& recorder = view_.recorder();
    const QPalette& colors = palette();
    drawFieldGround(painter, *this, colors.color(QPalette::Active, QPalette::Base));
    if (hasFocus() || recorder.isRecording())
        drawFocusRing(painter, QRectF(rect()), controlRadius, colors);
    const bool isShortcut = recorder.combo() && !recorder.isRecording();
    painter.setPen(isShortcut ? colors.color(QPalette::Text) : secondaryTextColor(colors));
    painter.drawText(rect(), Qt::AlignCenter, text());
}

ShortcutRecorderRow::ShortcutRecorderRow(const QString& title, const QString& subtitle, const QString& owner,
                                         ShortcutRecorderView& view)
    : owner_(owner), view_(view),
      clearButton_(new SymbolButton(QStringLiteral("xmark.circle"),
                                    QStringLiteral("Clear shortcut of %1").arg(owner),
                                    SymbolButton::Ground::onHover, secondaryTextColor(palette()))),
      field_(new RecorderField(view, clearButton_)), message_(makeText({}, TextRole::warning)) {
    clearButton_->setToolTip(QStringLiteral("Clear"));
    message_->setAlignment(Qt::AlignRight);

    connect(field_, &QPushButton::clicked, this, [this] {
        field_->setFocus();
        view_.startRecording();
    });
    connect(clearButton_, &QToolButton::clicked, this, [this] {
        field_->setFocus();
        view_.clear();
    });

    auto* texts = new QVBoxLayout;
    texts->setSpacing(1);
    texts->addWidget(makeText(title));
    if (!subtitle.isEmpty())
        texts->addWidget(makeText(subtitle, TextRole::secondary));
    auto* line = new QHBoxLayout;
    line->setSpacing(16);
    line->addLayout(texts, 1);
    line->addWidget(field_, 0, Qt::AlignVCenter);
    auto* rows = new QVBoxLayout(this);
    setRowMargins(*rows);
    rows->setSpacing(6);
    rows->addLayout(line);
    rows->addWidget(message_);

    subscription_ = view_.changed.connect([this] { showState(); });
    showState();
}

void ShortcutRecorderRow::showState() {
    const ShortcutRecorder& recorder = view_.recorder();
    const QString words = recorder.combo() ? shortcutInWords(*recorder.combo()) : QStringLiteral("none");
    const QString message = qText(recorder.validationMessage().value_or(""));
    field_->setText(qText(recorder.text()));
    field_->setToolTip(recorder.combo() ? words : QString());
    field_->setAccessibleName(QStringLiteral("Shortcut of %1").arg(owner_));
    field_->setAccessibleDescription(recorder.isRecording()
                                         ? QStringLiteral("%1 %2").arg(qText(recorder.text()), message)
                                         : QStringLiteral("%1 %2").arg(words, message));
    field_->update();
    clearButton_->setVisible(recorder.combo().has_value());
    message_->setText(message);
    message_->setVisible(!message.isEmpty());
}

QString shortcutInWords(const KeyCombo& combo) {
    struct Name {
        ModifierSet modifier;
        const char* text;
    };
    QString words;
    for (const Name& name : {Name{ModifierSet::control, "Ctrl+"}, Name{ModifierSet::option, "Alt+"},
                             Name{ModifierSet::shift, "Shift+"}, Name{ModifierSet::command, "Super+"}})
        if (combo.modifiers.contains(name.modifier))
            words += QLatin1String(name.text);
    return words + qText(KeyCombo::keyName(combo.keyCode));
}

ShortcutsPaneWidget::ShortcutsPaneWidget(const SettingsCollaborators& collaborators)
    : pane_({.shortcutManager = collaborators.shortcutManager,
             .keyMonitors = collaborators.keyMonitors,
             .profileStore = collaborators.profileStore,
             .profileListViewModel = collaborators.profileListViewModel,
             .currentProfileViewModel = collaborators.currentProfileViewModel}) {
    auto* autoDetect = new SettingsGroup;
    autoDetect_ = autoDetect;
    const QString title = qText(ShortcutsPane::autoDetectTitle);
    autoDetect->addRow(new ShortcutRecorderRow(title, qText(ShortcutsPane::autoDetectExplanation), title,
                                               pane_.recorder(std::nullopt)));
    addSection(sections(), QStringLiteral("Connected Display Setup"), {}, autoDetect);
    rebuildGroups();
    subscription_ = pane_.changed.connect([this] { rebuildGroups(); });
}

ShortcutsPaneWidget::~ShortcutsPaneWidget() {
    // The rows refer to the recorders of the pane.
    delete groups_;
    delete autoDetect_;
}

QString ShortcutsPaneWidget::description() const {
    return QStringLiteral("Shortcuts work in every app. Each one contains Control.");
}

void ShortcutsPaneWidget::rebuildGroups() {
    // The recorders of rows that are gone are gone too, and with them everything that shows them.
    delete groups_;
    groups_ = new QWidget;
    auto* rows = new QVBoxLayout(groups_);
    rows->setContentsMargins(0, 22, 0, 0);
    rows->setSpacing(0);
    sections().addWidget(groups_);
    for (const ShortcutsPane::Group& group : pane_.groups()) {
        auto* recorders = new SettingsGroup;
        for (const ShortcutsPane::Row& row : group.rows) {
            const QString name = qText(row.title);
            recorders->addRow(new ShortcutRecorderRow(name, {},
                                                      QStringLiteral("%1, %2").arg(name, qText(group.title)),
                                                      pane_.recorder(row.layoutID)));
        }
        addSection(*rows,
                   group.isCurrent ? QStringLiteral("%1 (connected)").arg(qText(group.title))
                                   : qText(group.title),
                   {}, recorders);
    }
    if (pane_.groups().empty()) {
        auto* note = new SettingsGroup;
        note->addRow(makeNoteRow(qText(ShortcutsPane::emptyText)));
        addSection(*rows, QStringLiteral("Layouts"), {}, note);
    }
    groups_->show();
    followLayoutWithTab(*this);
}

} // namespace tavrin

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
    const int text = fontMetrics().horizontalAdvance(QStringLiteral("⌃⌥⇧R  Ctrl+Alt+Shift+R"));
    return {text + clearButton_->sizeHint().width() + 16, controlHeight(fontMetrics())};
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
    const QRect space = rect().adjusted(8, 0, -8, 0);
    if (!isShortcut) {
        painter.setPen(secondaryTextColor(colors));
        drawTextLine(painter, space, layoutDirection(), Qt::AlignCenter, text());
        return;
    }
    // The symbols, and what they mean.
    const auto start = Qt::AlignLeft | Qt::AlignVCenter;
    painter.setPen(colors.color(QPalette::Text));
    drawTextLine(painter, space, layoutDirection(), start, text());
    const int taken = fontMetrics().horizontalAdvance(text()) + fontMetrics().averageCharWidth() * 2;
    const int button = clearButton_->width();
    const bool isLeftToRight = layoutDirection() == Qt::LeftToRight;
    const QRect rest =
        isLeftToRight ? space.adjusted(taken, 0, -button, 0) : space.adjusted(button, 0, -taken, 0);
    painter.setPen(secondaryTextColor(colors));
    drawTextLine(
        painter, rest, layoutDirection(), start,
        fontMetrics().elidedText(qText(shortcutInWords(*recorder.combo())), Qt::ElideRight, rest.width()));
}

ShortcutRecorderRow::ShortcutRecorderRow(const QString& title, const QString& subtitle, const QString& owner,
                                         ShortcutRecorderView& view, const ShortcutsPane& pane)
    : title_(title), owner_(owner), view_(view), pane_(pane),
      clearButton_(new SymbolButton(QStringLiteral("xmark.circle"),
                                    QStringLiteral("Clear shortcut of %1").arg(owner),
                                    SymbolButton::Ground::onHover, secondaryTextColor(palette()))),
      field_(new RecorderField(view, clearButton_)), message_(makeText({})) {
    clearButton_->setToolTip(QStringLiteral("Clear"));

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
    texts->addWidget(message_);
    fill(texts, field_);

    subscription_ = view_.changed.connect([this] { showState(); });
    showState();
}

void ShortcutRecorderRow::showState() {
    const ShortcutRecorder& recorder = view_.recorder();
    const QString words =
        recorder.combo() ? qText(shortcutInWords(*recorder.combo())) : QStringLiteral("none");
    const bool isRefused = recorder.validationMessage().has_value();
    const QString message = qText(isRefused          ? *recorder.validationMessage()
                                  : recorder.combo() ? pane_.note(*recorder.combo())
                                                     : std::string());
    field_->setText(qText(recorder.text()));
    field_->setToolTip(recorder.combo() ? words : QString());
    field_->setAccessibleName(QStringLiteral("Shortcut of %1").arg(owner_));
    const QString state = recorder.isRecording() ? qText(recorder.text()) : words;
    const bool isAboutThis = isRefused || !recorder.isRecording();
    field_->setAccessibleDescription(
        isAboutThis && !message.isEmpty() ? QStringLiteral("%1. %2").arg(state, message) : state);
    field_->update();
    clearButton_->setVisible(recorder.combo().has_value());
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText,
                    isRefused ? warningColor(palette()) : secondaryTextColor(palette()));
    message_->setPalette(colors);
    const QString spoken = field_->accessibleDescription();
    if (spoken != spoken_ && field_->hasFocus())
        announce(*this, spoken);
    spoken_ = spoken;
    message_->setText(message);
    message_->setVisible(!message.isEmpty());
}

KeyboardList::Row ShortcutRecorderRow::row() {
    return {field_, title_, {clearButton_}, [this] { return view_.recorder().isRecording(); }};
}

ShortcutsPaneWidget::ShortcutsPaneWidget(const SettingsCollaborators& collaborators)
    : pane_(collaborators), list_(new KeyboardList(this)) {
    auto* autoDetect = new SettingsGroup;
    autoDetect_ = autoDetect;
    const QString title = qText(ShortcutsPane::autoDetectTitle);
    autoDetectRow_ = new ShortcutRecorderRow(title, qText(ShortcutsPane::autoDetectExplanation), title,
                                             pane_.recorder(std::nullopt), pane_);
    autoDetect->addRow(autoDetectRow_);
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
    std::vector<KeyboardList::Row> list{autoDetectRow_->row()};
    for (const ShortcutsPane::Group& group : pane_.groups()) {
        auto* recorders = new SettingsGroup;
        for (const ShortcutsPane::Row& row : group.rows) {
            const QString name = qText(row.title);
            auto* recorder =
                new ShortcutRecorderRow(name, {}, QStringLiteral("%1, %2").arg(name, qText(group.title)),
                                        pane_.recorder(row.layoutID), pane_);
            recorders->addRow(recorder);
            list.push_back(recorder->row());
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
    list_->setRows(std::move(list));
    followLayoutWithTab(*window());
}

} // namespace tavrin

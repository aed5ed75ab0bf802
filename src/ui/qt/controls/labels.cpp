#include "ui/qt/controls/labels.h"

#include "ui/qt/controls/style.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace tavrin {
namespace {

constexpr int preferredCharacters = 60;
constexpr int leastCharacters = 8;
constexpr const char* roleProperty = "tavrinRole";

QFont scaled(QFont font, double factor) {
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * factor);
    else
        font.setPixelSize(qRound(font.pixelSize() * factor));
    return font;
}

} // namespace

QString withoutDirectionMarks(QString text) {
    return text.removeIf([](QChar character) {
        const auto code = character.unicode();
        return code == 0x061c || code == 0x200e || code == 0x200f || (code >= 0x202a && code <= 0x202e) ||
               (code >= 0x2066 && code <= 0x2069);
    });
}

void setAccessibleRole(QWidget& widget, QAccessible::Role role) {
    static const bool isInstalled = [] {
        QAccessible::installFactory([](const QString&, QObject* object) -> QAccessibleInterface* {
            const auto wanted = object ? object->property(roleProperty) : QVariant();
            auto* shown = wanted.isValid() ? qobject_cast<QWidget*>(object) : nullptr;
            return shown ? new QAccessibleWidget(shown, static_cast<QAccessible::Role>(wanted.toInt()))
                         : nullptr;
        });
        return true;
    }();
    static_cast<void>(isInstalled);
    widget.setProperty(roleProperty, static_cast<int>(role));
    // A screen reader that listens may have asked before.
    if (QAccessible::isActive())
        if (auto* known = QAccessible::queryAccessibleInterface(&widget))
            QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(known));
}

void announce(const QWidget& widget, const QString& text) {
    if (!QAccessible::isActive() || text.isEmpty())
        return;
    // Screen readers say what a notification says when it appears.
    const auto name = QStringLiteral("announcement");
    auto* notification = widget.window()->findChild<QWidget*>(name, Qt::FindDirectChildrenOnly);
    if (!notification) {
        notification = new QWidget(widget.window());
        notification->setObjectName(name);
        setAccessibleRole(*notification, QAccessible::Notification);
    }
    // After what changes with it, which they may pass over when much comes at once.
    QTimer::singleShot(std::chrono::milliseconds(150), notification, [notification, text] {
        notification->setAccessibleName(text);
        QAccessibleEvent event(notification, QAccessible::ObjectShow);
        QAccessible::updateAccessibility(&event);
    });
}

TextLabel::TextLabel(const QString& text) : QLabel(text) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
}

int TextLabel::heightForWidth(int width) const {
    const QMargins margins = contentsMargins();
    QTextLayout layout(brokenText(), font());
    const double height = lay(layout, std::max(1, width - margins.left() - margins.right())).height();
    return static_cast<int>(std::ceil(height)) + margins.top() + margins.bottom();
}

QSize TextLabel::sizeHint() const {
    const QMargins margins = contentsMargins();
    QTextLayout layout(brokenText(), font());
    const QSizeF size = lay(layout, fontMetrics().averageCharWidth() * preferredCharacters);
    const QSize whole(static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height())));
    return whole.grownBy(margins);
}

QSize TextLabel::minimumSizeHint() const {
    const QSize wanted = sizeHint();
    return {std::min(wanted.width(), fontMetrics().averageCharWidth() * leastCharacters),
            std::min(wanted.height(), fontMetrics().height())};
}

void TextLabel::nameControl(QWidget* control) {
    const QString name = text();
    setText(QString(name).replace(QLatin1Char('&'), QLatin1String("&&")));
    setAccessibleName(name);
    setBuddy(control);
}

void TextLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, foregroundRole()));
    const QRectF space = contentsRect();
    QTextLayout layout(brokenText(), font());
    const QSizeF size = lay(layout, space.width());
    const double spare = space.height() - size.height();
    const double top = alignment() & Qt::AlignVCenter ? spare / 2 : alignment() & Qt::AlignBottom ? spare : 0;
    layout.draw(&painter, {space.left(), space.top() + std::max(0.0, std::floor(top))});
}

QString TextLabel::shownText() const {
    return buddy() ? text().replace(QLatin1String("&&"), QLatin1String("&")) : text();
}

QString TextLabel::brokenText() const {
    return withoutDirectionMarks(shownText()).replace(QLatin1Char('\n'), QChar(QChar::LineSeparator));
}

QSizeF TextLabel::lay(QTextLayout& layout, double width) const {
    QTextOption option(QStyle::visualAlignment(layoutDirection(), alignment()) & Qt::AlignHorizontal_Mask);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(layout.text().isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    layout.setTextOption(option);
    QSizeF size(0, 0);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, size.height()});
        size = {std::max(size.width(), line.naturalTextWidth()), size.height() + line.height()};
    }
    layout.endLayout();
    return size;
}

Badge::Badge(const QString& text, Ground ground) : QLabel(text), ground_(ground) {
    setTextFormat(Qt::PlainText);
    setContentsMargins(8, 2, 8, 2);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Badge::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QColor accent = accentColor(palette());
    painter.setBrush(ground_ == Ground::plain ? badgeColor(palette())
                                              : mixedColor(groupColor(palette()), accent, 0.28));
    painter.drawRoundedRect(rect(), height() / 2.0, height() / 2.0);
    QLabel::paintEvent(event);
}

SelectableText::SelectableText(const QString& text, const QString& accessibleName) {
    setPlainText(withoutDirectionMarks(text));
    setAccessibleName(accessibleName);
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFocusPolicy(Qt::StrongFocus);
    setTabChangesFocus(true);
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
    QPalette colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    colors.setColor(QPalette::Text, colors.color(QPalette::Active, QPalette::WindowText));
    setPalette(colors);
    fit();
}

QSize SelectableText::sizeHint() const {
    return {fontMetrics().averageCharWidth() * preferredCharacters, height()};
}

QSize SelectableText::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * leastCharacters, height()};
}

void SelectableText::resizeEvent(QResizeEvent* event) {
    QTextEdit::resizeEvent(event);
    fit();
}

void SelectableText::focusOutEvent(QFocusEvent* event) {
    QTextCursor cursor = textCursor();
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason) {
        cursor.clearSelection();
        setTextCursor(cursor);
    }
    QTextEdit::focusOutEvent(event);
}

void SelectableText::keyPressEvent(QKeyEvent* event) {
    // The whole text is in sight here; scrolling is for the pane around it.
    if (event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown)
        event->ignore();
    else
        QTextEdit::keyPressEvent(event);
}

void SelectableText::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void SelectableText::fit() {
    document()->setTextWidth(viewport()->width());
    const int wanted = static_cast<int>(std::ceil(document()->size().height()));
    if (wanted != height())
        setFixedHeight(wanted);
}

TextLabel* makeText(const QString& text, TextRole role) {
    auto* label = new TextLabel(text);
    if (role != TextRole::ordinary) {
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText,
                         role == TextRole::secondary ? secondaryTextColor(palette) : warningColor(palette));
        label->setPalette(palette);
    }
    return label;
}

TextLabel* makeSectionTitle(const QString& text) {
    auto* label = makeText(text);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    setAccessibleRole(*label, QAccessible::Heading);
    label->setAccessibleName(text);
    return label;
}

TextLabel* makePaneTitle(const QString& text) {
    auto* label = makeSectionTitle(text);
    label->setFont(scaled(label->font(), 1.5));
    return label;
}

} // namespace tavrin

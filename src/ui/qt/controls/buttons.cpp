#include "ui/qt/controls/buttons.h"

#include "ui/qt/controls/icons.h"
#include "ui/qt/controls/labels.h"
#include "ui/qt/controls/settings_group.h"
#include "ui/qt/controls/style.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace tavrin {
namespace {

constexpr int leastCharacters = 8; ///< so that buttons beside each other are about the same size

} // namespace

ActionButton::ActionButton(const QString& text, Role role) : KeepsItsSize(text), role_(role) {
    setAttribute(Qt::WA_Hover);
}

QSize ActionButton::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    const int text =
        std::max(metrics.horizontalAdvance(this->text()), metrics.averageCharWidth() * leastCharacters);
    return {text + metrics.height() * 2, controlHeight(metrics)};
}

void ActionButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isPlain = role_ == Role::ordinary || !isEnabled();
    QColor ground;
    QColor ink = controlTextColor(*this);
    if (role_ == Role::suggested) {
        ground = accentColor(palette());
        ink = isPlain ? ink : accentTextColor(palette());
    } else if (role_ == Role::destructive) {
        ground = warningColor(palette());
        ink = isPlain ? ink : withContrast(groupColor(palette()), ground, textContrast);
    }
    if (isPlain)
        drawControlGround(painter, *this, isDown());
    else
        drawControlGround(painter, *this, isDown(), ground);
    if (hasFocus() && isPlain)
        drawFocusRing(painter, QRectF(rect()), controlRadius, palette());
    if (hasFocus() && !isPlain) {
        // On a ground of the ring's own colour, the ring stands inside.
        painter.setPen(QPen(ink, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(2.5, 2.5, -2.5, -2.5), controlRadius - 2,
                                controlRadius - 2);
    }
    painter.setPen(ink);
    drawTextLine(painter, rect(), layoutDirection(), Qt::AlignCenter, text());
}

bool pressFocusedControl(const QKeyEvent& event) {
    if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter)
        return false;
    QWidget* focused = QApplication::focusWidget();
    if (auto* picker = qobject_cast<QComboBox*>(focused))
        picker->showPopup();
    else if (auto* tool = qobject_cast<QToolButton*>(focused); tool && tool->menu())
        tool->showMenu();
    else if (auto* button = qobject_cast<QAbstractButton*>(focused))
        button->click();
    else
        return false;
    return true;
}

QWidget* makeAnswerLine(QPushButton* accept, QPushButton* cancel) {
    auto* line = new QDialogButtonBox;
    line->addButton(accept, QDialogButtonBox::AcceptRole);
    line->addButton(cancel, QDialogButtonBox::RejectRole);
    return line;
}

SymbolButton::SymbolButton(const QString& symbol, const QString& name, Ground ground,
                           std::optional<QColor> color)
    : ground_(ground) {
    setIcon(symbolIcon(symbol, color));
    setAccessibleName(name);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setPopupMode(QToolButton::InstantPopup);
}

void SymbolButton::setSymbol(const QString& symbol) {
    setIcon(symbolIcon(symbol));
}

QSize SymbolButton::sizeHint() const {
    const int height = controlHeight(fontMetrics());
    return {ground_ == Ground::always ? height * 5 / 4 : height, height};
}

void SymbolButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (ground_ == Ground::always || isDown() || (isEnabled() && underMouse()))
        drawControlGround(painter, *this, isDown());
    if (hasFocus())
        drawFocusRing(painter, QRectF(rect()), controlRadius, palette());
    QRect place(0, 0, iconSide(), iconSide());
    place.moveCenter(rect().center());
    icon().paint(&painter, place, Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);
}

FoldRow::FoldRow(const QString& text) : KeepsItsSize(text) {
    setExpanded(false);
}

void FoldRow::setExpanded(bool isExpanded) {
    const bool isNew = isExpanded_ != isExpanded;
    isExpanded_ = isExpanded;
    setAccessibleDescription(isExpanded ? QStringLiteral("expanded") : QStringLiteral("collapsed"));
    if (isNew)
        announce(*this, accessibleDescription());
    update();
}

QSize FoldRow::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance(text()) + 2 * rowMargin + 2 * metrics.height(),
            qRound(metrics.height() * 2.6)};
}

void FoldRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isLeftToRight = layoutDirection() == Qt::LeftToRight;
    painter.setPen(palette().color(QPalette::Active, QPalette::WindowText));
    drawTextLine(painter, rect().adjusted(rowMargin, 0, -rowMargin, 0), layoutDirection(),
                 Qt::AlignVCenter | Qt::AlignLeft, text());

    painter.save();
    const double side = fontMetrics().height() * 0.3;
    painter.translate(isLeftToRight ? width() - rowMargin - side : rowMargin + side, height() / 2.0);
    painter.rotate(isExpanded_ ? 90 : isLeftToRight ? 0 : 180);
    painter.setPen(QPen(secondaryTextColor(palette()), 1.75, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF({{-side / 2, -side}, {side / 2, 0}, {-side / 2, side}}));
    painter.restore();
    if (hasFocus())
        drawFocusRing(painter, QRectF(rect()), groupRadius - 1, palette());
}

} // namespace tavrin

#include "ui/qt/symbol_button.h"

#include "ui/qt/return_key.h"
#include "ui/qt/settings_style.h"
#include "ui/qt/symbol_icon.h"

#include <QPainter>

namespace tavrin {

SymbolButton::SymbolButton(const QString& symbol, const QString& name, Ground ground,
                           std::optional<QColor> color)
    : ground_(ground) {
    setIcon(symbolIcon(symbol, color));
    setAccessibleName(name);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setPopupMode(QToolButton::InstantPopup);
}

QSize SymbolButton::sizeHint() const {
    const int height = controlHeight(fontMetrics());
    return {ground_ == Ground::always ? height * 5 / 4 : height, height};
}

void SymbolButton::keyPressEvent(QKeyEvent* event) {
    if (isReturnKey(*event))
        menu() ? showMenu() : click();
    else
        QToolButton::keyPressEvent(event);
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

} // namespace tavrin

#include "ui/qt/action_button.h"

#include "ui/qt/return_key.h"
#include "ui/qt/settings_style.h"
#include "ui/qt/symbol_icon.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace tavrin {
namespace {

constexpr int leastCharacters = 8; ///< so that buttons beside each other are about the same size

} // namespace

ActionButton::ActionButton(const QString& text, Role role) : QPushButton(text), role_(role) {
    setAttribute(Qt::WA_Hover);
}

QSize ActionButton::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    const int text =
        std::max(metrics.horizontalAdvance(this->text()), metrics.averageCharWidth() * leastCharacters);
    return {text + metrics.height() * 2, controlHeight(metrics)};
}

void ActionButton::keyPressEvent(QKeyEvent* event) {
    if (isReturnKey(*event))
        click();
    else
        QPushButton::keyPressEvent(event);
}

void ActionButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isPlain = role_ == Role::ordinary || !isEnabled();
    QColor ground;
    QColor ink = controlTextColor(*this);
    if (role_ == Role::suggested) {
        ground = palette().color(QPalette::Active, QPalette::Highlight);
        ink = isPlain ? ink : palette().color(QPalette::Active, QPalette::HighlightedText);
    } else if (role_ == Role::destructive) {
        ground = warningColor(palette());
        ink = isPlain ? ink : groupColor(palette());
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
    painter.drawText(rect(), Qt::AlignCenter, text());
}

QHBoxLayout* makeAnswerLine(QPushButton* accept, QPushButton* cancel) {
    const int order = accept->style()->styleHint(QStyle::SH_DialogButtonLayout, nullptr, accept);
    const bool acceptComesLast = order == 2 || order == 3; // macOS and GNOME
    auto* line = new QHBoxLayout;
    line->setSpacing(8);
    line->addStretch();
    line->addWidget(acceptComesLast ? cancel : accept);
    line->addWidget(acceptComesLast ? accept : cancel);
    return line;
}

} // namespace tavrin

#include "ui/qt/controls/inputs.h"

#include "ui/qt/controls/buttons.h"
#include "ui/qt/controls/labels.h"
#include "ui/qt/controls/style.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QWheelEvent>

namespace tavrin {
namespace {

constexpr int ringWidth = 3; ///< space around the switch for the ring of the focus

} // namespace

SwitchControl::SwitchControl(const QString& accessibleName) {
    setAccessibleName(accessibleName);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize SwitchControl::sizeHint() const {
    const int height = qRound(fontMetrics().height() * 1.15);
    return {qRound(height * 1.85) + 2 * ringWidth, height + 2 * ringWidth};
}

void SwitchControl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF track = QRectF(rect()).adjusted(ringWidth, ringWidth, -ringWidth, -ringWidth);
    const double radius = track.height() / 2;
    QColor ground = isChecked() ? accentLineColor(palette()) : shapeColor(palette());
    if (!isEnabled())
        ground = mixedColor(ground, groupColor(palette()), 0.5);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(track, radius, radius);

    const double side = track.height() - 4;
    const bool isAtEnd = isChecked() == (layoutDirection() == Qt::LeftToRight);
    const double x = isAtEnd ? track.right() - 2 - side : track.left() + 2;
    painter.setBrush(withContrast(Qt::white, ground, isEnabled() ? shapeContrast : 1));
    painter.drawEllipse(QRectF(x, track.top() + 2, side, side));
    if (hasFocus())
        drawFocusRing(painter, QRectF(rect()), radius + ringWidth, palette());
}

namespace {

constexpr int characters = 20;
constexpr int sideMargin = 10;

/// The choices look like the items of a menu.
class ChoiceDelegate final : public QStyledItemDelegate {
public:
    explicit ChoiceDelegate(QComboBox& box) : QStyledItemDelegate(&box), box_(box) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const int width = option.fontMetrics.horizontalAdvance(index.data().toString());
        return {width + 3 * sideMargin + option.fontMetrics.height(), controlHeight(option.fontMetrics)};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionMenuItem item;
        static_cast<QStyleOption&>(item) = option;
        item.type = QStyleOption::SO_MenuItem;
        item.version = QStyleOptionMenuItem::Version;
        item.rect.adjust(2, 1, -2, -1);
        item.menuHasCheckableItems = true;
        item.checkType = QStyleOptionMenuItem::Exclusive;
        item.checked = index.row() == box_.currentIndex();
        const int space = item.rect.width() - 3 * sideMargin - option.fontMetrics.height();
        item.text = option.fontMetrics
                        .elidedText(withoutDirectionMarks(index.data().toString()), Qt::ElideRight, space)
                        .replace(QLatin1Char('&'), QLatin1String("&&"))
                        .replace(QLatin1Char('\t'), QLatin1Char(' '));
        box_.style()->drawControl(QStyle::CE_MenuItem, &item, painter, &box_);
    }

private:
    QComboBox& box_;
};

} // namespace

ChoiceBox::ChoiceBox(const QString& name) {
    setAccessibleName(name);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setItemDelegate(new ChoiceDelegate(*this));
    view()->verticalScrollBar()->setStyleSheet(scrollBarStyle(palette()));
    QPalette colors = view()->palette();
    colors.setColor(QPalette::Base, groupColor(palette()));
    view()->setPalette(colors);
}

QSize ChoiceBox::sizeHint() const {
    return {fontMetrics().averageCharWidth() * characters + 3 * sideMargin, controlHeight(fontMetrics())};
}

void ChoiceBox::showPopup() {
    const int wanted = view()->sizeHintForColumn(0) + scrollBarWidth + 2 * sideMargin;
    view()->setMinimumWidth(std::min(wanted, fontMetrics().averageCharWidth() * 2 * characters));
    QComboBox::showPopup();
}

void ChoiceBox::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void ChoiceBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawControlGround(painter, *this, view()->isVisible());
    if (hasFocus())
        drawFocusRing(painter, QRectF(rect()), controlRadius, palette());

    const bool isLeftToRight = layoutDirection() == Qt::LeftToRight;
    const double arrowSide = fontMetrics().height() * 0.28;
    const double x = isLeftToRight ? width() - sideMargin - arrowSide : sideMargin + arrowSide;
    const double y = height() / 2.0;
    const QColor ink = controlTextColor(*this);
    painter.setPen(QPen(ink, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF(
        {{x - arrowSide, y - arrowSide / 2}, {x, y + arrowSide / 2}, {x + arrowSide, y - arrowSide / 2}}));

    const int arrowSpace = qRound(2 * arrowSide) + sideMargin * 3 / 2;
    const QRect space = rect().adjusted(isLeftToRight ? sideMargin : arrowSpace, 0,
                                        isLeftToRight ? -arrowSpace : -sideMargin, 0);
    painter.setPen(ink);
    drawTextLine(
        painter, space, layoutDirection(), Qt::AlignVCenter | Qt::AlignLeft,
        fontMetrics().elidedText(withoutDirectionMarks(currentText()), Qt::ElideRight, space.width()));
}

TextField::TextField(const QString& name) : ground_(palette().color(QPalette::Active, QPalette::Base)) {
    setAccessibleName(name);
    setFrame(false);
    setTextMargins(6, 0, 6, 0);
    setMinimumHeight(controlHeight(fontMetrics()));
    QPalette colors = palette();
    // The style would fill the corners as well.
    colors.setColor(QPalette::Base, Qt::transparent);
    // Desktops with a dark palette forget this one.
    colors.setColor(QPalette::PlaceholderText,
                    mixedColor(ground_, palette().color(QPalette::Active, QPalette::Text), 0.62));
    setPalette(colors);
}

void TextField::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        drawFieldGround(painter, *this, ground_);
        if (hasFocus())
            drawFocusRing(painter, QRectF(rect()), controlRadius, palette());
    }
    QLineEdit::paintEvent(event);
}

} // namespace tavrin

#include "ui/qt/controls/menu_style.h"

#include "ui/qt/controls/style.h"

#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>

namespace tavrin {
namespace {

constexpr int panelMargin = 5;   ///< around the items, with the border
constexpr int textMargin = 10;   ///< beside an item's text
constexpr int columnSpacing = 8; ///< between an icon or mark and the text
constexpr double panelRadius = 8;

QPolygonF arrow(QPointF centre, double side, double degrees) {
    QTransform turn;
    turn.translate(centre.x(), centre.y());
    turn.rotate(degrees);
    return turn.map(QPolygonF({{-side / 2, -side}, {side / 2, 0}, {-side / 2, side}}));
}

/// What the marks and icons before the texts take of each item.
int markWidth(const QStyleOptionMenuItem& item) {
    const int icon = item.maxIconWidth > 4 ? item.maxIconWidth : 0; // less stands for none
    const int mark = item.menuHasCheckableItems ? item.fontMetrics.height() : 0;
    return icon || mark ? std::max(icon, mark) + columnSpacing : 0;
}

QString withoutMnemonic(QString text) {
    for (qsizetype i = text.indexOf(QLatin1Char('&')); i >= 0; i = text.indexOf(QLatin1Char('&'), i + 1))
        text.remove(i, 1);
    return text;
}

void drawItem(QPainter& painter, const QStyleOptionMenuItem& item) {
    const QPalette& palette = item.palette;
    if (item.menuItemType == QStyleOptionMenuItem::Separator)
        return painter.fillRect(QRect(item.rect.left() + textMargin, item.rect.center().y(),
                                      item.rect.width() - 2 * textMargin, 1),
                                lineColor(palette));
    const bool isEnabled = item.state & QStyle::State_Enabled;
    const bool isChosen = isEnabled && item.state & QStyle::State_Selected;
    if (isChosen) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(accentColor(palette));
        painter.drawRoundedRect(item.rect, controlRadius - 1, controlRadius - 1);
    }
    // Labels are disabled items, yet they are there to be read.
    const QColor ink = isChosen    ? accentTextColor(palette)
                       : isEnabled ? palette.color(QPalette::Active, QPalette::WindowText)
                                   : withContrast(palette.color(QPalette::Disabled, QPalette::WindowText),
                                                  groupColor(palette), textContrast);
    const QPen stroke(ink, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    const auto placed = [&](const QRect& place) {
        return QStyle::visualRect(item.direction, item.rect, place);
    };
    const QRect inner = item.rect.adjusted(textMargin, 0, -textMargin, 0);
    const int marks = markWidth(item);
    const QRect mark = placed({inner.topLeft(), QSize(marks - columnSpacing, inner.height())});
    const double side = item.fontMetrics.height() * 0.26;
    if (!item.icon.isNull()) {
        item.icon.paint(&painter, mark, Qt::AlignCenter,
                        !isEnabled ? QIcon::Disabled
                        : isChosen ? QIcon::Selected
                                   : QIcon::Normal);
    } else if (item.checked && item.checkType != QStyleOptionMenuItem::NotCheckable) {
        painter.setPen(stroke);
        const QPointF centre = QRectF(mark).center();
        painter.drawPolyline(QPolygonF({centre + QPointF(-side, 0), centre + QPointF(-side / 3, side * 0.7),
                                        centre + QPointF(side, -side * 0.7)}));
    }
    painter.setPen(ink);
    const QStringList columns = item.text.split(QLatin1Char('\t'));
    drawTextLine(painter, placed(inner.adjusted(marks, 0, 0, 0)), item.direction,
                 Qt::AlignLeft | Qt::AlignVCenter, withoutMnemonic(columns.front()));
    if (columns.size() > 1) {
        painter.setPen(isChosen ? ink : secondaryTextColor(palette));
        drawTextLine(painter, placed(inner), item.direction, Qt::AlignRight | Qt::AlignVCenter, columns[1]);
    }
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu) {
        const bool isLeftToRight = item.direction == Qt::LeftToRight;
        painter.setPen(stroke);
        painter.drawPolyline(arrow(
            {isLeftToRight ? inner.right() - side / 2 : inner.left() + side / 2, inner.center().y() + 0.5},
            side, isLeftToRight ? 0 : 180));
    }
}

} // namespace

void MenuStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element == CE_MenuEmptyArea)
        return;
    if (!item || (element != CE_MenuItem && element != CE_MenuScroller))
        return QProxyStyle::drawControl(element, option, painter, widget);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (element == CE_MenuItem) {
        drawItem(*painter, *item);
    } else {
        painter->setPen(QPen(secondaryTextColor(item->palette), 1.75, Qt::SolidLine, Qt::RoundCap));
        painter->drawPolyline(arrow(QRectF(item->rect).center(), item->fontMetrics.height() * 0.26,
                                    item->state & State_DownArrow ? 90 : -90));
    }
    painter->restore();
}

void MenuStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    if (element == PE_PanelMenu) {
        // What lies between the mask and the round corner would be black where nothing is translucent.
        painter->fillRect(option->rect, shapeColor(option->palette));
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(shapeColor(option->palette), 1));
        painter->setBrush(groupColor(option->palette));
        painter->drawRoundedRect(QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5), panelRadius - 0.5,
                                 panelRadius - 0.5);
        painter->restore();
    } else if (element != PE_FrameMenu || !qobject_cast<const QMenu*>(widget)) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

int MenuStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_MenuPanelWidth:
    case PM_MenuDesktopFrameWidth:
        return 0;
    case PM_MenuHMargin:
    case PM_MenuVMargin:
        return panelMargin;
    case PM_MenuScrollerHeight:
        return option ? option->fontMetrics.height() : 16;
    case PM_SubMenuOverlap:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

void MenuStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    if (qobject_cast<QMenu*>(widget))
        widget->setAttribute(Qt::WA_TranslucentBackground);
}

QSize MenuStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                  const QWidget* widget) const {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (type != CT_MenuItem || !item)
        return QProxyStyle::sizeFromContents(type, option, size, widget);
    const int line = item->fontMetrics.height();
    if (item->menuItemType == QStyleOptionMenuItem::Separator)
        return {size.width(), line / 2 + 2};
    const bool hasColumns = item->text.contains(QLatin1Char('\t'));
    const int after = item->menuItemType == QStyleOptionMenuItem::SubMenu || hasColumns ? 2 * line : 0;
    return {size.width() + 2 * textMargin + markWidth(*item) + after, line * 7 / 4};
}

int MenuStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* data) const {
    switch (hint) {
    case SH_Menu_Scrollable:
        return 1;
    case SH_Menu_AllowActiveAndDisabled:
    case SH_ComboBox_Popup: // a list under the picker, which scrolls when it is long
        return 0;
    case SH_Menu_Mask:
        if (auto* mask = qstyleoption_cast<QStyleHintReturnMask*>(data); mask && option) {
            QPainterPath shape;
            shape.addRoundedRect(option->rect, panelRadius - 1, panelRadius - 1);
            mask->region = QRegion(shape.toFillPolygon().toPolygon());
            return 1;
        }
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
}

} // namespace tavrin

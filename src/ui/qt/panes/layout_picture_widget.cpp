#include "ui/qt/panes/layout_picture_widget.h"

#include "ui/qt/controls/style.h"
#include "ui/qt/panes/settings_pane_widget.h"

#include <QHelpEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

#include <ranges>

namespace tavrin {
namespace {

constexpr double cornerRadius = 2.5;
constexpr double labelMargin = 3;
constexpr double margin = 7;

QFont smallFont(QFont font) {
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * 0.78);
    return font;
}

} // namespace

LayoutPictureWidget::LayoutPictureWidget(std::function<QIcon(const std::string&)> iconOf)
    : iconOf_(std::move(iconOf)) {
    setAccessibleRole(*this, QAccessible::Graphic);
    setAccessibleName(QStringLiteral("Picture of the layout"));
    setFixedSize(sizeHint());
}

void LayoutPictureWidget::setPicture(LayoutPicture picture) {
    picture_ = std::move(picture);
    setAccessibleDescription(qText(picture_.description()));
    update();
}

QSize LayoutPictureWidget::sizeHint() const {
    // The size follows the font, as everything beside the picture does.
    const int unit = fontMetrics().height();
    return {unit * 14, unit * 15 / 2};
}

QRectF LayoutPictureWidget::placed(const Rect& rect) const {
    if (picture_.size.width <= 0 || picture_.size.height <= 0)
        return {};
    const QRectF space = QRectF(this->rect()).adjusted(margin, margin, -margin, -margin);
    const double scale = std::min(space.width() / picture_.size.width, space.height() / picture_.size.height);
    const double left = space.left() + (space.width() - picture_.size.width * scale) / 2;
    const double top = space.top() + (space.height() - picture_.size.height * scale) / 2;
    return {left + rect.x * scale, top + rect.y * scale, rect.width * scale, rect.height * scale};
}

void LayoutPictureWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // Pictures of all shapes stand in frames of one.
    painter.setPen(Qt::NoPen);
    painter.setBrush(mixedColor(groupColor(palette()), palette().color(QPalette::WindowText), 0.05));
    painter.drawRoundedRect(rect(), 6, 6);
    QPainterPath ground;
    const QColor accent = accentColor(palette());
    for (const LayoutPicture::Screen& screen : picture_.screens) {
        const QRectF place = placed(screen.frame).adjusted(1, 1, -1, -1);
        ground.addRoundedRect(place, 4, 4);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(mixedColor(groupColor(palette()), accent, 0.28));
    painter.drawPath(ground);
    painter.save();
    if (!picture_.screens.empty())
        painter.setClipPath(ground);
    // Icons are looked up when they are seen first.
    for (const LayoutPicture::Window& window : picture_.windows)
        drawWindow(painter, window, window.bundleIdentifier ? iconOf_(*window.bundleIdentifier) : QIcon());
    for (const LayoutPicture::Screen& screen : picture_.screens)
        drawScreenName(painter, screen);
    painter.restore();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(mixedColor(lineColor(palette()), palette().color(QPalette::WindowText), 0.25), 1));
    painter.drawPath(ground);
}

void LayoutPictureWidget::drawScreenName(QPainter& painter, const LayoutPicture::Screen& screen) const {
    if (screen.name.empty())
        return;
    const QFont small = smallFont(font());
    const QFontMetricsF metrics(small);
    const QString name =
        metrics.elidedText(qText(screen.name), Qt::ElideRight, placed(screen.frame).width() - 8);
    QRectF place(0, 0, metrics.horizontalAdvance(name) + 8, metrics.height());
    place.moveBottomRight(placed(screen.frame).bottomRight() - QPointF(3, 3));
    painter.setPen(Qt::NoPen);
    painter.setBrush(mixedColor(groupColor(palette()), accentColor(palette()), 0.5));
    painter.drawRoundedRect(place, 3, 3);
    painter.setFont(small);
    painter.setPen(withContrast(palette().color(QPalette::Active, QPalette::WindowText),
                                painter.brush().color(), textContrast));
    drawTextLine(painter, place.toAlignedRect(), Qt::LeftToRight, Qt::AlignCenter, name);
}

void LayoutPictureWidget::drawWindow(QPainter& painter, const LayoutPicture::Window& window,
                                     const QIcon& icon) const {
    const QRectF frame = placed(window.frame).adjusted(0.5, 0.5, -0.5, -0.5);
    const QColor text = palette().color(QPalette::Active, QPalette::WindowText);
    painter.setPen(QPen(mixedColor(groupColor(palette()), text, 0.45), 1));
    painter.setBrush(mixedColor(palette().color(QPalette::Active, QPalette::Base), text, 0.03));
    painter.drawRoundedRect(frame, cornerRadius, cornerRadius);
    drawLabel(painter,
              placed(window.visibleFrame).adjusted(labelMargin, labelMargin, -labelMargin, -labelMargin),
              withoutDirectionMarks(qText(window.label)), icon);
}

void LayoutPictureWidget::drawLabel(QPainter& painter, const QRectF& space, const QString& label,
                                    const QIcon& icon) const {
    const QFont small = smallFont(font());
    const QFontMetricsF metrics(small);
    const double iconSide =
        icon.isNull() ? 0 : std::min({space.width(), space.height(), metrics.height() * 1.5});
    const bool hasRoomForText =
        space.height() >= iconSide + metrics.height() && space.width() >= metrics.averageCharWidth() * 4;
    const bool showsText = hasRoomForText || icon.isNull();
    const double textHeight = showsText ? metrics.height() : 0;
    double y = space.center().y() - (iconSide + textHeight) / 2;
    if (iconSide >= 6) {
        // Whole points keep the icon sharp.
        const QRect place(qRound(space.center().x() - iconSide / 2), qRound(y), qRound(iconSide),
                          qRound(iconSide));
        icon.paint(&painter, place);
        y += iconSide;
    }
    if (!showsText || space.height() < metrics.height() * 0.8)
        return;
    painter.setFont(small);
    painter.setPen(palette().color(QPalette::Active, QPalette::Text));
    painter.drawText(QRectF(space.left(), y, space.width(), metrics.height()), Qt::AlignCenter,
                     metrics.elidedText(label, Qt::ElideRight, space.width()));
}

bool LayoutPictureWidget::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<const QHelpEvent*>(event);
    for (const LayoutPicture::Window& window : std::views::reverse(picture_.windows)) {
        if (!placed(window.visibleFrame).contains(help->pos()))
            continue;
        const QString text =
            window.title.empty()
                ? qText(window.label)
                : QStringLiteral("%1\n%2").arg(qText(window.label), qText(window.title).left(200));
        // Titles are other programs' texts and no markup.
        QToolTip::showText(help->globalPos(),
                           QStringLiteral("<p style='white-space:pre'>%1</p>").arg(text.toHtmlEscaped()),
                           this);
        return true;
    }
    QToolTip::hideText();
    return true;
}

} // namespace tavrin

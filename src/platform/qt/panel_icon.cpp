#include "platform/qt/panel_icon.h"

#include <QFile>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>
#include <functional>

// The macro has to stand outside of every namespace.
static void initializeResources() {
    Q_INIT_RESOURCE(icons);
}

namespace tavrin {
namespace {

/// At one and at two pixels per point.
constexpr int sizes[] = {16, 18, 20, 22, 24, 28, 32, 36, 44, 48, 64};

const QColor ink(0xfcfcfc);
const QColor outlineInk(0x16, 0x18, 0x1b);

using Drawing = std::function<void(QPainter&, const QRectF&)>;

/// The drawing's shape, filled with one colour.
QImage filled(const QImage& shape, const QColor& color) {
    QImage image = shape;
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

QPixmap picture(int size, const Drawing& draw) {
    const double outline = size < 32 ? 1 : size / 24.0;
    QImage shape(size, size, QImage::Format_ARGB32_Premultiplied);
    shape.fill(Qt::transparent);
    {
        QPainter painter(&shape);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        const double inner = size - 2 * outline;
        draw(painter, {outline, outline, inner, inner});
    }
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QImage dark = filled(shape, outlineInk);
    constexpr int directions = 8;
    for (int i = 0; i < directions; ++i) {
        const double angle = 2 * M_PI * i / directions;
        painter.drawImage(QPointF(outline * std::cos(angle), outline * std::sin(angle)), dark);
    }
    painter.drawImage(0, 0, filled(shape, ink));
    painter.end();
    return QPixmap::fromImage(std::move(image));
}

QIcon iconOf(const Drawing& draw) {
    QIcon icon;
    for (const int size : sizes)
        icon.addPixmap(picture(size, draw));
    return icon;
}

QString resourcePath(const QString& name) {
    return QStringLiteral(":/icons/%1.svg").arg(name);
}

} // namespace

void registerResources() {
    initializeResources();
}

bool hasDrawing(const QString& name) {
    registerResources();
    return !name.isEmpty() && QFile::exists(resourcePath(name));
}

QIcon panelIcon(const QString& name) {
    QSvgRenderer renderer(resourcePath(name));
    return iconOf([&](QPainter& painter, const QRectF& rect) { renderer.render(&painter, rect); });
}

QIcon panelTextIcon(const QString& text) {
    return iconOf([&](QPainter& painter, const QRectF& rect) {
        QFont font = QGuiApplication::font();
        font.setBold(true);
        font.setPixelSize(std::max(1, static_cast<int>(rect.height() * 0.8)));
        const double width = QFontMetricsF(font).horizontalAdvance(text);
        if (width > rect.width())
            font.setPixelSize(std::max(1, static_cast<int>(font.pixelSize() * rect.width() / width)));
        painter.setFont(font);
        painter.drawText(rect, Qt::AlignCenter, text);
    });
}

} // namespace tavrin

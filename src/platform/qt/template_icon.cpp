#include "platform/qt/template_icon.h"

#include "platform/qt/icon_resources.h"

#include <QFile>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <functional>
#include <memory>

namespace tavrin {
namespace {

using Drawing = std::function<void(QPainter&, const QRectF&)>;

/// Draws afresh at every size, so that nothing is ever scaled.
class DrawingEngine final : public QIconEngine {
public:
    explicit DrawingEngine(Drawing drawing) : drawing_(std::move(drawing)) {}

    QIconEngine* clone() const override { return new DrawingEngine(*this); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
        const double ratio = painter->device()->devicePixelRatioF();
        QImage image(rect.size() * ratio, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        paintInto(image);
        image.setDevicePixelRatio(ratio);
        painter->drawImage(rect.topLeft(), image);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode, QIcon::State) override {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        paintInto(image);
        return QPixmap::fromImage(std::move(image));
    }

private:
    void paintInto(QImage& image) {
        if (image.isNull())
            return;
        const double side = std::min(image.width(), image.height());
        QPainter painter(&image);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        drawing_(painter, {(image.width() - side) / 2, (image.height() - side) / 2, side, side});
    }

    Drawing drawing_;
};

QString resourcePath(const QString& name) {
    return QStringLiteral(":/icons/%1.svg").arg(name);
}

} // namespace

bool hasTemplateImage(const QString& name) {
    registerIconResources();
    return !name.isEmpty() && QFile::exists(resourcePath(name));
}

QIcon templateIcon(const QString& name, Shade shade) {
    const QString variant = name + (shade == Shade::light ? QLatin1String("Light") : QLatin1String("Dark"));
    const bool hasVariant = hasTemplateImage(variant);
    const auto renderer = std::make_shared<QSvgRenderer>(resourcePath(hasVariant ? variant : name));
    const auto ink = inkColor(shade);
    return QIcon(new DrawingEngine([renderer, hasVariant, ink](QPainter& painter, const QRectF& rect) {
        renderer->render(&painter, rect);
        if (hasVariant)
            return;
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(rect, ink);
    }));
}

QIcon textIcon(const QString& text, Shade shade) {
    return QIcon(new DrawingEngine([text, ink = inkColor(shade)](QPainter& painter, const QRectF& rect) {
        QFont font = QGuiApplication::font();
        font.setBold(true);
        font.setPixelSize(std::max(1, static_cast<int>(rect.height() * 0.8)));
        const double width = QFontMetricsF(font).horizontalAdvance(text);
        if (width > rect.width())
            font.setPixelSize(std::max(1, static_cast<int>(font.pixelSize() * rect.width() / width)));
        painter.setFont(font);
        painter.setPen(ink);
        painter.drawText(rect, Qt::AlignCenter, text);
    }));
}

QColor inkColor(Shade shade) {
    return shade == Shade::light ? QColor(0x232629) : QColor(0xfcfcfc);
}

} // namespace tavrin

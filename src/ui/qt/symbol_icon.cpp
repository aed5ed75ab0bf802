#include "ui/qt/symbol_icon.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

#include <algorithm>
#include <memory>

namespace tavrin {
namespace {

class SymbolEngine final : public QIconEngine {
public:
    SymbolEngine(const QString& name, std::optional<QColor> color)
        : renderer_(std::make_shared<QSvgRenderer>(QStringLiteral(":/icons/%1.svg").arg(name))),
          color_(color) {}

    QIconEngine* clone() const override { return new SymbolEngine(*this); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const double ratio = painter->device()->devicePixelRatioF();
        QImage image = rendered(rect.size() * ratio, mode);
        image.setDevicePixelRatio(ratio);
        painter->drawImage(rect.topLeft(), image);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        return QPixmap::fromImage(rendered(size, mode));
    }

private:
    QImage rendered(const QSize& size, QIcon::Mode mode) const {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        if (image.isNull())
            return image;
        image.fill(Qt::transparent);
        const double side = std::min(size.width(), size.height());
        const QRectF square((size.width() - side) / 2, (size.height() - side) / 2, side, side);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        renderer_->render(&painter, square);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(image.rect(), inkFor(mode));
        return image;
    }

    QColor inkFor(QIcon::Mode mode) const {
        const QPalette palette = QGuiApplication::palette();
        if (mode == QIcon::Selected)
            return palette.color(QPalette::Active, QPalette::HighlightedText);
        if (mode == QIcon::Disabled)
            return palette.color(QPalette::Disabled, QPalette::WindowText);
        return color_.value_or(palette.color(QPalette::Active, QPalette::WindowText));
    }

    std::shared_ptr<QSvgRenderer> renderer_;
    std::optional<QColor> color_;
};

bool isDark(const QPalette& palette) {
    return qGray(palette.color(QPalette::Window).rgb()) < 128;
}

} // namespace

QIcon symbolIcon(const QString& name, std::optional<QColor> color) {
    return QIcon(new SymbolEngine(name, color));
}

QColor secondaryTextColor(const QPalette& palette) {
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor ground = palette.color(QPalette::Active, QPalette::Window);
    const auto mixed = [](int a, int b) { return (a * 7 + b * 3) / 10; };
    return QColor(mixed(text.red(), ground.red()), mixed(text.green(), ground.green()),
                  mixed(text.blue(), ground.blue()));
}

QColor warningColor(const QPalette& palette) {
    return isDark(palette) ? QColor(0xff8a80) : QColor(0xb3261e);
}

} // namespace tavrin

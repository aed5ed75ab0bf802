#include "ui/qt/controls/icons.h"

#include "ui/qt/controls/style.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QIconEngine>
#include <QLabel>
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
            return accentTextColor(palette);
        if (mode == QIcon::Disabled)
            return palette.color(QPalette::Disabled, QPalette::WindowText);
        return color_.value_or(palette.color(QPalette::Active, QPalette::WindowText));
    }

    std::shared_ptr<QSvgRenderer> renderer_;
    std::optional<QColor> color_;
};

} // namespace

QIcon symbolIcon(const QString& name, std::optional<QColor> color) {
    return QIcon(new SymbolEngine(name, color));
}

namespace {

constexpr qint64 largestIconFile = 4 * 1024 * 1024;

} // namespace

QLabel* makeSymbol(const QString& name, const QColor& color, double lines) {
    auto* label = new QLabel;
    const int side = qRound(label->fontMetrics().height() * lines);
    label->setPixmap(symbolIcon(name, color).pixmap(QSize(side, side), label->devicePixelRatioF()));
    return label;
}

QIcon applicationIcon(const std::optional<std::string>& iconName) {
    if (!iconName || iconName->empty())
        return {};
    const auto name = QString::fromStdString(*iconName);
    if (QDir::isAbsolutePath(name)) {
        const QFileInfo file(name);
        return file.isFile() && file.size() <= largestIconFile ? QIcon(name) : QIcon();
    }
    // Older entries name the file.
    QIcon icon = QIcon::fromTheme(name);
    if (icon.isNull() && name.contains(QLatin1Char('.')))
        icon = QIcon::fromTheme(QFileInfo(name).completeBaseName());
    return icon;
}

QIcon applicationIconOrPlaceholder(const std::optional<std::string>& iconName) {
    const QIcon icon = applicationIcon(iconName);
    return icon.isNull() ? symbolIcon(QStringLiteral("app.badge")) : icon;
}

} // namespace tavrin

#include "platform/qt/embedded_tray_icon.h"

#include "platform/qt/panel_shade.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <array>

namespace tavrin {
namespace {

/// Long enough for the panel to have painted itself behind a window it has just taken in.
constexpr int paintTimeInMilliseconds = 150;

/// The window system of a nested X server does not let a program see the screen.
bool canSeeScreen() {
    return qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

/// The name of the window that Qt puts into the panel as soon as there is one.
constexpr auto windowInPanel = QLatin1String("QSystemTrayIconSysWindow");

} // namespace

EmbeddedTrayIcon::EmbeddedTrayIcon(Shade assumedShade, std::function<void()> activated)
    : shade_(assumedShade) {
    connect(&trayIcon_, &QSystemTrayIcon::activated, this,
            [activated = std::move(activated)](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::Context)
                    activated();
            });
    QCoreApplication::instance()->installEventFilter(this);
    lookSoon_.setSingleShot(true);
    lookSoon_.setInterval(paintTimeInMilliseconds);
    connect(&lookSoon_, &QTimer::timeout, this, &EmbeddedTrayIcon::lookAtPanel);
}

void EmbeddedTrayIcon::setIcon(IconForShade icon) {
    icon_ = std::move(icon);
    trayIcon_.setIcon(icon_(shade_));
}

void EmbeddedTrayIcon::setToolTip(const QString& text) {
    trayIcon_.setToolTip(text);
}

void EmbeddedTrayIcon::show() {
    trayIcon_.show();
}

void EmbeddedTrayIcon::hide() {
    trayIcon_.hide();
}

std::optional<QRect> EmbeddedTrayIcon::geometry() const {
    const QRect geometry = trayIcon_.geometry();
    if (!trayIcon_.isVisible() || geometry.isEmpty() || !isPanelThere())
        return {};
    return geometry;
}

void EmbeddedTrayIcon::checkShade() {
    lookSoon_.start();
}

bool EmbeddedTrayIcon::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::Expose && object->objectName() == windowInPanel)
        checkShade();
    return QObject::eventFilter(object, event);
}

void EmbeddedTrayIcon::lookAtPanel() {
    const auto place = geometry();
    QScreen* screen = place ? QGuiApplication::screenAt(place->center()) : nullptr;
    if (!screen || !canSeeScreen())
        return;
    const QPoint origin = place->topLeft() - screen->geometry().topLeft();
    const QImage image =
        screen->grabWindow(0, origin.x(), origin.y(), place->width(), place->height()).toImage();
    if (image.isNull())
        return;
    // No drawing reaches into the corners.
    const int right = image.width() - 1;
    const int bottom = image.height() - 1;
    std::array lightness = {qGray(image.pixel(0, 0)), qGray(image.pixel(right, 0)),
                            qGray(image.pixel(0, bottom)), qGray(image.pixel(right, bottom))};
    std::ranges::sort(lightness);
    const int middle = (lightness[1] + lightness[2]) / 2;
    const auto shade = PanelShade::shadeOf(QColor(middle, middle, middle));
    if (shade == shade_)
        return;
    shade_ = shade;
    if (icon_)
        trayIcon_.setIcon(icon_(shade_));
}

} // namespace tavrin

#include "platform/qt/qt_status_item.h"

#include "platform/qt/menu_text.h"
#include "platform/qt/panel_icon.h"

#include <QGuiApplication>
#include <QScreen>
#include <fmt/format.h>

#include <chrono>
#include <cstdio>
#include <utility>

namespace tavrin {
namespace {

/// Panels speak of pixels; Qt scales distances from the origin of each screen.
QPoint fromPixels(QPoint pixels) {
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QPoint origin = screen->geometry().topLeft();
        const double scale = screen->devicePixelRatio();
        if (QRect(origin, screen->size() * scale).contains(pixels))
            return origin + (pixels - origin) / scale;
    }
    return pixels;
}

/// Where a menu opens so that its icon stays in sight. At the bottom of the screen it goes upwards.
QPoint besideIcon(const QRect& icon) {
    const QScreen* screen = QGuiApplication::screenAt(icon.center());
    const bool isAbove = screen && icon.center().y() < screen->geometry().center().y();
    return isAbove ? icon.bottomLeft() + QPoint(0, 1) : icon.topLeft();
}

} // namespace

QtStatusItem::QtStatusItem(BusLink& sessionBus)
    : busMenu_([this] { willOpen(); }, [this](const MenuItem& item) { chosen(item); }),
      popUpMenu_([this](const MenuItem& item) { chosen(item); }),
      notifier_(sessionBus, busMenu_, [this](QPoint position) {
          lastActivation_ = fromPixels(position);
          popUpMenu(*lastActivation_);
      }) {
    QObject::connect(&popUpMenu_, &QMenu::aboutToShow, &popUpMenu_, [this] { willOpen(); });
    panelTime_.setSingleShot(true);
    QObject::connect(&panelTime_, &QTimer::timeout, &panelTime_, [this] {
        // Without an embedded icon the panels on the bus have not answered; Qt would wait for them.
        if (!embeddedIcon_)
            fmt::print(stderr, "tavrin: the status area does not answer; the icon appears when it does\n");
        if ((!embeddedIcon_ || !QSystemTrayIcon::isSystemTrayAvailable()) && noStatusArea_)
            noStatusArea_();
    });
}

bool QtStatusItem::setTemplateImage(const std::string& name) {
    const auto drawing = QString::fromStdString(name);
    if (!hasDrawing(drawing))
        return false;
    icon_ = panelIcon(drawing);
    showIcon();
    return true;
}

void QtStatusItem::setTitle(const std::string& title) {
    icon_ = panelTextIcon(menuTitle(title));
    showIcon();
}

void QtStatusItem::setToolTip(const std::string& text) {
    toolTip_ = menuTitle(text);
    notifier_.setToolTip(toolTip_);
    if (embeddedIcon_)
        embeddedIcon_->setToolTip(toolTip_);
}

void QtStatusItem::setMenu(const MenuModel& menu) {
    busMenu_.setMenu(menu);
    popUpMenu_.setMenu(menu);
}

void QtStatusItem::setMenuCallbacks(std::function<void()> willOpen,
                                    std::function<void(MenuAction, std::optional<Uuid>)> chosen) {
    willOpen_ = std::move(willOpen);
    chosen_ = std::move(chosen);
}

void QtStatusItem::show() {
    // At login the panel may start later than this program.
    constexpr std::chrono::seconds panelStart{5};
    panelTime_.start(panelStart);
    notifier_.show([this](StatusNotifier::Presence presence) { panelsChanged(presence); });
}

std::optional<QRect> QtStatusItem::embeddedPlace() const {
    if (!embeddedIcon_ || !embeddedIcon_->isVisible() || embeddedIcon_->geometry().isEmpty() ||
        !QSystemTrayIcon::isSystemTrayAvailable())
        return {};
    return embeddedIcon_->geometry();
}

std::optional<Rect> QtStatusItem::anchor() const {
    if (const auto place = embeddedPlace())
        return Rect{double(place->x()), double(place->y()), double(place->width()), double(place->height())};
    if (lastActivation_)
        return Rect{double(lastActivation_->x()), double(lastActivation_->y()), 1, 1};
    return {};
}

void QtStatusItem::panelsChanged(StatusNotifier::Presence presence) {
    if (presence == StatusNotifier::Presence::absent)
        return showEmbedded();
    embeddedIcon_.reset();
    panelTime_.stop();
    wasAbsenceReported_ = true; // later on, the user knows the program
}

void QtStatusItem::showEmbedded() {
    if (!embeddedIcon_) {
        embeddedIcon_ = std::make_unique<QSystemTrayIcon>(icon_);
        QObject::connect(embeddedIcon_.get(), &QSystemTrayIcon::activated, &popUpMenu_,
                         [this](QSystemTrayIcon::ActivationReason reason) {
                             if (reason != QSystemTrayIcon::Trigger && reason != QSystemTrayIcon::Context)
                                 return;
                             const auto place = embeddedPlace();
                             popUpMenu(place ? besideIcon(*place) : QCursor::pos());
                         });
        embeddedIcon_->setToolTip(toolTip_);
    }
    embeddedIcon_->show();
    if (QSystemTrayIcon::isSystemTrayAvailable() || std::exchange(wasAbsenceReported_, true))
        return;
    fmt::print(stderr, "tavrin: this desktop has no status area; the icon appears as soon as there is one\n");
}

void QtStatusItem::popUpMenu(QPoint position) {
    popUpMenu_.popup(position);
    popUpMenu_.activateWindow();
}

void QtStatusItem::showIcon() {
    notifier_.setIcon(icon_);
    if (embeddedIcon_)
        embeddedIcon_->setIcon(icon_);
}

void QtStatusItem::willOpen() {
    if (willOpen_)
        willOpen_();
}

void QtStatusItem::chosen(const MenuItem& item) {
    if (chosen_ && item.action != MenuAction::none)
        chosen_(item.action, item.representedObject);
}

} // namespace tavrin

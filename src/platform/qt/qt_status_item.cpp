#include "platform/qt/qt_status_item.h"

#include "platform/qt/menu_text.h"

#include <QGuiApplication>
#include <QScreen>
#include <fmt/format.h>

#include <cstdio>

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

} // namespace

QtStatusItem::QtStatusItem()
    : panelShade_([this] { showIcon(); }),
      busMenu_([this] { willOpen(); }, [this](const MenuItem& item) { chosen(item); }),
      popUpMenu_([this](const MenuItem& item) { chosen(item); }) {
    QObject::connect(&popUpMenu_, &QMenu::aboutToShow, &popUpMenu_, [this] { willOpen(); });
}

bool QtStatusItem::setTemplateImage(const std::string& name) {
    const auto drawing = QString::fromStdString(name);
    if (!hasTemplateImage(drawing))
        return false;
    icon_ = [drawing](Shade shade) { return templateIcon(drawing, shade); };
    showIcon();
    return true;
}

void QtStatusItem::setTitle(const std::string& title) {
    icon_ = [text = menuTitle(title)](Shade shade) { return textIcon(text, shade); };
    showIcon();
}

void QtStatusItem::setToolTip(const std::string& text) {
    toolTip_ = menuTitle(text);
    if (notifierItem_)
        notifierItem_->setToolTip(toolTip_);
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
    if (!hosts_)
        hosts_ = std::make_unique<StatusNotifierHosts>(
            [this](StatusNotifierHosts::Presence presence) { panelsChanged(presence); });
}

std::optional<Rect> QtStatusItem::anchor() const {
    const auto geometry = embeddedIcon_ ? embeddedIcon_->geometry() : std::nullopt;
    if (geometry)
        return Rect{static_cast<double>(geometry->x()), static_cast<double>(geometry->y()),
                    static_cast<double>(geometry->width()), static_cast<double>(geometry->height())};
    if (lastActivation_)
        return Rect{static_cast<double>(lastActivation_->x()), static_cast<double>(lastActivation_->y()), 1,
                    1};
    return {};
}

void QtStatusItem::panelsChanged(StatusNotifierHosts::Presence presence) {
    if (presence == StatusNotifierHosts::Presence::present) {
        if (embeddedIcon_)
            embeddedIcon_->hide();
        if (!notifierItem_) {
            notifierItem_ = std::make_unique<StatusNotifierItem>(busMenu_, [this](QPoint position) {
                lastActivation_ = fromPixels(position);
                popUpMenu(*lastActivation_);
            });
            notifierItem_->setToolTip(toolTip_);
        }
        showIcon();
        notifierItem_->registerWithPanels();
        return;
    }
    if (!embeddedIcon_) {
        embeddedIcon_ = std::make_unique<EmbeddedTrayIcon>(panelShade_.shade(), [this] {
            const auto place = embeddedIcon_->geometry();
            popUpMenu(place ? place->topLeft() : QCursor::pos());
        });
        embeddedIcon_->setToolTip(toolTip_);
    }
    showIcon();
    embeddedIcon_->show();
    if (!EmbeddedTrayIcon::isPanelThere() && !std::exchange(noTrayWasReported_, true))
        fmt::print(stderr,
                   "tavrin: this desktop has no status area; the icon appears as soon as there is one\n");
}

void QtStatusItem::popUpMenu(QPoint position) {
    popUpMenu_.popup(position);
    popUpMenu_.activateWindow();
}

void QtStatusItem::showIcon() {
    if (!icon_)
        return;
    if (notifierItem_)
        notifierItem_->setIcon(icon_(panelShade_.shade()));
    if (embeddedIcon_)
        embeddedIcon_->setIcon(icon_);
}

void QtStatusItem::willOpen() {
    if (embeddedIcon_)
        embeddedIcon_->checkShade();
    if (willOpen_)
        willOpen_();
}

void QtStatusItem::chosen(const MenuItem& item) {
    if (chosen_ && item.action != MenuAction::none)
        chosen_(item.action, item.representedObject);
}

} // namespace tavrin

#pragma once

#include "base/geometry.h"
#include "platform/qt/bus_menu.h"
#include "platform/qt/embedded_tray_icon.h"
#include "platform/qt/panel_shade.h"
#include "platform/qt/status_menu.h"
#include "platform/qt/status_notifier_hosts.h"
#include "platform/qt/status_notifier_item.h"
#include "ports/status_item.h"

#include <memory>

namespace tavrin {

/// The status item in whatever status area the desktop has: a panel on the session bus before one that
/// takes windows in. Panels may come, go and change their kind while the program runs.
class QtStatusItem final : public StatusItemSurface {
public:
    QtStatusItem();

    bool setTemplateImage(const std::string& name) override;
    void setTitle(const std::string& title) override;
    void setToolTip(const std::string& text) override;
    void setMenu(const MenuModel& menu) override;
    void setMenuCallbacks(std::function<void()> willOpen,
                          std::function<void(MenuAction, std::optional<Uuid>)> chosen) override;
    void show() override;

    /// Where the item stands, in Qt's desktop coordinates; absent when the panel does not tell.
    std::optional<Rect> anchor() const;

private:
    void panelsChanged(StatusNotifierHosts::Presence presence);
    void popUpMenu(QPoint position);
    void showIcon();
    void willOpen();
    void chosen(const MenuItem& item);

    std::function<void()> willOpen_;
    std::function<void(MenuAction, std::optional<Uuid>)> chosen_;
    EmbeddedTrayIcon::IconForShade icon_;
    QString toolTip_;
    bool noTrayWasReported_ = false;
    std::optional<QPoint> lastActivation_;

    PanelShade panelShade_;
    BusMenu busMenu_;
    StatusMenu popUpMenu_;
    std::unique_ptr<StatusNotifierItem> notifierItem_;
    std::unique_ptr<EmbeddedTrayIcon> embeddedIcon_;
    std::unique_ptr<StatusNotifierHosts> hosts_;
};

} // namespace tavrin

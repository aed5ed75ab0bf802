#pragma once

#include "base/geometry.h"
#include "platform/qt/bus_menu.h"
#include "platform/qt/status_menu.h"
#include "platform/qt/status_notifier.h"
#include "ports/status_item.h"

#include <QSystemTrayIcon>
#include <QTimer>

#include <memory>

namespace tavrin {

/// The status item in whatever status area the desktop has: a panel on the session bus before one that
/// takes windows in. Panels may come, go and change their kind while the program runs.
class QtStatusItem final : public StatusItemSurface {
public:
    explicit QtStatusItem(BusLink& sessionBus);

    bool setTemplateImage(const std::string& name) override;
    void setTitle(const std::string& title) override;
    void setToolTip(const std::string& text) override;
    void setMenu(const MenuModel& menu) override;
    void setMenuCallbacks(std::function<void()> willOpen,
                          std::function<void(MenuAction, std::optional<Uuid>)> chosen) override;
    void show() override;
    void setOnNoStatusArea(std::function<void()> handler) override { noStatusArea_ = std::move(handler); }

    /// Where the item stands, in Qt's desktop coordinates; absent when the panel does not tell.
    std::optional<Rect> anchor() const;

private:
    void panelsChanged(StatusNotifier::Presence presence);
    void showEmbedded();
    std::optional<QRect> embeddedPlace() const;
    void popUpMenu(QPoint position);
    void showIcon();
    void willOpen();
    void chosen(const MenuItem& item);

    std::function<void()> willOpen_;
    std::function<void(MenuAction, std::optional<Uuid>)> chosen_;
    std::function<void()> noStatusArea_;
    QIcon icon_;
    QString toolTip_;
    bool wasAbsenceReported_ = false;
    std::optional<QPoint> lastActivation_;

    BusMenu busMenu_;
    StatusMenu popUpMenu_;
    StatusNotifier notifier_;
    /// In a panel of the older kind (XEmbed). Made only while no panel on the bus shows the item: Qt decides
    /// for the whole process at its first tray icon which kind it makes.
    std::unique_ptr<QSystemTrayIcon> embeddedIcon_;
    QTimer panelTime_; ///< how long a panel may take to come
};

} // namespace tavrin

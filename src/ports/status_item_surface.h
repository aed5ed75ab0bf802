#pragma once

#include "records/menu_model.h"

#include <functional>
#include <optional>
#include <string>

namespace tavrin {

/// The status item as the desktop shows it: an icon with a menu.
class StatusItemSurface {
public:
    virtual ~StatusItemSurface() = default;

    /// Shows the icon drawing with that name as a template image, tinted to suit a light or dark panel, and
    /// removes any title. False, and nothing changes, when there is no such drawing.
    virtual bool setTemplateImage(const std::string& name) = 0;

    /// Shows a short text in place of the icon.
    virtual void setTitle(const std::string& title) = 0;

    virtual void setToolTip(const std::string& text) = 0;

    /// Replaces the whole menu. An open menu follows.
    virtual void setMenu(const MenuModel& menu) = 0;

    /// `willOpen` is called just before the menu is shown and may replace it; `chosen` when the user picks
    /// an item that has an action.
    virtual void setMenuCallbacks(std::function<void()> willOpen,
                                  std::function<void(MenuAction, std::optional<Uuid>)> chosen) = 0;

    /// Makes the item visible. Where there is no status area (yet), the item appears as soon as there is.
    virtual void show() = 0;
};

} // namespace tavrin

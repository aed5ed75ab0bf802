#pragma once

#include "base/uuid.h"
#include "records/key_combo.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// What choosing a menu item does.
enum class MenuAction {
    none,
    saveCurrentLayout,
    quickUpdateLayout,
    restoreLayout,
    confirmSuggestedProfile,
    openSettings,
    openAccessibilitySettings,
    recheckPermission,
    quit,
};

/// The key shown beside an item: a character, or a key with its modifiers.
struct KeyEquivalent {
    std::string key; ///< a character such as "q", or the name of a key such as "F5"
    ModifierSet modifiers;

    bool operator==(const KeyEquivalent&) const = default;
};

/// One line of a menu.
struct MenuItem {
    std::string title; ///< empty for a separator
    bool isSeparator = false;
    bool isEnabled = false; ///< labels are disabled
    MenuAction action = MenuAction::none;
    std::optional<Uuid> representedObject; ///< the layout the action is about
    std::optional<KeyEquivalent> keyEquivalent;
    std::vector<MenuItem> submenu;

    bool operator==(const MenuItem&) const = default;

    static MenuItem separator() { return {.isSeparator = true}; }
    static MenuItem label(std::string title) { return {.title = std::move(title)}; }
    static MenuItem command(std::string title, MenuAction action, std::optional<Uuid> representedObject = {},
                            std::optional<KeyEquivalent> keyEquivalent = {}) {
        return {.title = std::move(title),
                .isEnabled = true,
                .action = action,
                .representedObject = representedObject,
                .keyEquivalent = std::move(keyEquivalent)};
    }
    static MenuItem withSubmenu(std::string title, std::vector<MenuItem> items) {
        return {.title = std::move(title), .isEnabled = true, .submenu = std::move(items)};
    }
};

/// A whole menu, top to bottom.
using MenuModel = std::vector<MenuItem>;

/// The status item as the desktop shows it: an icon with a menu.
class StatusItemSurface {
public:
    virtual ~StatusItemSurface() = default;

    /// Shows the icon drawing with that name as a template image, in colours that suit a light or dark panel,
    /// and removes any title. False, and nothing changes, when there is no such drawing.
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

    /// `handler` is called when some seconds after `show` there still is no status area.
    virtual void setOnNoStatusArea(std::function<void()> handler) = 0;
};

} // namespace tavrin

#include "app/status_item_menu.h"

#include <fmt/format.h>

#include <ranges>

namespace tavrin {
namespace {

MenuModel restoreItems(const MonitorProfile& profile, const StatusItemMenuContent& content) {
    MenuModel items;
    for (const SavedLayout& layout : content.setups.layoutsOf(profile.id)) {
        std::optional<KeyEquivalent> keyEquivalent;
        if (const auto shortcut = content.layoutShortcuts.find(layout.id);
            shortcut != content.layoutShortcuts.end())
            keyEquivalent =
                KeyEquivalent{KeyCombo::keyName(shortcut->second.keyCode), shortcut->second.modifiers};
        const char* suffix = profile.defaultLayoutID == layout.id ? " (auto)" : "";
        items.push_back(
            MenuItem::command(layout.name + suffix, MenuAction::restoreLayout, layout.id, keyEquivalent));
    }
    return items;
}

MenuModel updateItems(const MonitorProfile& profile, const StatusItemMenuContent& content) {
    MenuModel items;
    for (const SavedLayout& layout : content.setups.layoutsOf(profile.id))
        items.push_back(MenuItem::command(layout.name, MenuAction::quickUpdateLayout, layout.id));
    return items;
}

MenuModel otherSetupItems(const StatusItemMenuContent& content) {
    MenuModel items;
    for (const MonitorProfile& profile : content.setups.profiles()) {
        if (content.matchedProfile && content.matchedProfile->id == profile.id)
            continue;
        if (auto layouts = restoreItems(profile, content); !layouts.empty())
            items.push_back(MenuItem::withSubmenu(profile.name, std::move(layouts)));
    }
    return items;
}

void append(MenuModel& menu, MenuModel items) {
    menu.insert(menu.end(), std::make_move_iterator(items.begin()), std::make_move_iterator(items.end()));
}

MenuModel setupItems(const StatusItemMenuContent& content) {
    MenuModel menu;
    menu.push_back(MenuItem::label("Current Display Setup"));
    menu.push_back(MenuItem::label(content.currentProfileName.value_or(
        content.suggestedProfileName.value_or("No matched display setup yet"))));
    if (content.matchExplanation)
        menu.push_back(MenuItem::label(*content.matchExplanation));
    if (content.requiresConfirmation)
        menu.push_back(MenuItem::command("Confirm Suggested Setup", MenuAction::confirmSuggestedProfile));
    menu.push_back(MenuItem::separator());
    menu.push_back(MenuItem::command("Save Layout…", MenuAction::saveCurrentLayout));
    if (content.matchedProfile)
        if (auto items = updateItems(*content.matchedProfile, content); !items.empty())
            menu.push_back(MenuItem::withSubmenu("Update Layout", std::move(items)));
    menu.push_back(MenuItem::separator());
    if (!content.unreadableFile.empty()) {
        menu.push_back(MenuItem::label(fmt::format("Cannot read {}", content.unreadableFile)));
    } else if (!content.matchedProfile) {
        menu.push_back(MenuItem::label("No Display Setup Matched"));
    } else {
        menu.push_back(MenuItem::label("Restore Layout"));
        auto items = restoreItems(*content.matchedProfile, content);
        if (items.empty())
            items.push_back(MenuItem::label("No Saved Layouts"));
        append(menu, std::move(items));
    }
    if (auto others = otherSetupItems(content); !others.empty())
        menu.push_back(MenuItem::withSubmenu("Other Display Setups", std::move(others)));
    return menu;
}

MenuModel permissionItems(AccessibilityPermissionState permission) {
    MenuModel menu;
    menu.push_back(MenuItem::label(permission == AccessibilityPermissionState::denied
                                       ? "Accessibility access is required"
                                       : "Checking Accessibility permission"));
    // The same key as that of the settings: without the permission this one is needed first.
    menu.push_back(MenuItem::command("Open Accessibility Settings", MenuAction::openAccessibilitySettings, {},
                                     KeyEquivalent{",", {}}));
    menu.push_back(
        MenuItem::command("Recheck Permission", MenuAction::recheckPermission, {}, KeyEquivalent{"r", {}}));
    return menu;
}

} // namespace

MenuModel statusItemMenu(const StatusItemMenuContent& content) {
    MenuModel menu = content.permission == AccessibilityPermissionState::granted
                         ? setupItems(content)
                         : permissionItems(content.permission);
    menu.push_back(MenuItem::separator());
    menu.push_back(MenuItem::command("Settings…", MenuAction::openSettings, {}, KeyEquivalent{",", {}}));
    menu.push_back(MenuItem::separator());
    menu.push_back(MenuItem::label(content.version.empty()
                                       ? std::string("Beta — free during beta")
                                       : fmt::format("Beta v{} — free during beta", content.version)));
    menu.push_back(MenuItem::command("Quit Tavrin", MenuAction::quit, {}, KeyEquivalent{"q", {}}));
    return menu;
}

} // namespace tavrin

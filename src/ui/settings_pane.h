#pragma once

#include <array>
#include <string_view>

namespace tavrin {

/// The panes of the settings window, in the order of its side list.
enum class SettingsPane { layouts, automation, shortcuts, apps, advanced };

struct SettingsPaneDescription {
    SettingsPane pane;
    std::string_view title;
    std::string_view symbol; ///< the name of the drawing beside the title
};

inline constexpr std::array settingsPanes = {
    SettingsPaneDescription{SettingsPane::layouts, "Layouts", "rectangle.3.group"},
    SettingsPaneDescription{SettingsPane::automation, "Automation", "bolt.badge.clock"},
    SettingsPaneDescription{SettingsPane::shortcuts, "Shortcuts", "keyboard"},
    SettingsPaneDescription{SettingsPane::apps, "Apps", "app.badge"},
    SettingsPaneDescription{SettingsPane::advanced, "Advanced", "wrench.and.screwdriver"},
};

} // namespace tavrin

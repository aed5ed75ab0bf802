#pragma once

#include "records/key_combo.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// A key combination that the user's configuration of sway binds outside of modes.
struct SwayUserBinding {
    std::optional<std::uint32_t> position; ///< evdev code, of a binding by position
    std::uint32_t symbol = 0;              ///< X key symbol, of any other
    ModifierSet modifiers;

    bool operator==(const SwayUserBinding&) const = default;
};

/// Reads the bindings of a configuration, as far as it can be read: variables and included files are
/// followed. What cannot be understood is left out. `mainFile` names the file that `mainText` comes from.
std::vector<SwayUserBinding> readSwayBindings(const std::string& mainText,
                                              const std::filesystem::path& mainFile);

} // namespace tavrin

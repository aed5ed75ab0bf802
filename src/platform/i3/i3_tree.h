#pragma once

#include "platform/i3/i3_connection.h"
#include "platform/windows/window_system.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// A window as i3 or sway arranges it. All texts are valid UTF-8 of bounded length.
struct I3Window {
    DesktopWindow window; ///< `id` is the container's number
    std::string output;   ///< empty in the scratchpad
    std::string workspace;
    bool isFullscreen = false;
    bool isWorkspaceShown = false;        ///< of its workspace: on an output now
    std::optional<std::uint32_t> xWindow; ///< of a window of an X client
    bool operator==(const I3Window&) const = default;
};

struct I3Tree {
    std::vector<I3Window> windows; ///< front to back
    std::optional<WindowID> focused;
    std::map<std::string, Rect> outputs;   ///< those that are on, by name
    std::map<std::string, Rect> workAreas; ///< of each output, what bars leave free of it

    bool operator==(const I3Tree&) const = default;
};

/// Reads the answer to `I3Question::tree`.
std::expected<I3Tree, I3Error> readI3Tree(const std::string& answer);

/// The output that most of the frame lies on, else the nearest one; empty without outputs.
std::string outputFor(const I3Tree& tree, const Rect& frame);

/// The command that brings a tiled window to where it is shown on that output; it stays tiled. `criterion`
/// says which window, for example "con_id=7".
std::string moveTiledCommand(const std::string& criterion, const std::string& output);

/// A name in quotes, as commands take it; absent where none can be written that means this name.
std::optional<std::string> quotedForI3(const std::string& name);

/// The command of a binding event; absent when it is none.
std::optional<std::string> readI3Binding(const std::string& event);

/// The "change" of a workspace event; empty when it has none.
std::string readI3Change(const std::string& event);

struct I3Version {
    std::string name; ///< as shown to the user, for example "sway 1.7"
    std::string configurationFile;
};
std::optional<I3Version> readI3Version(const std::string& answer);

/// The text in the answer to `I3Question::config`.
std::optional<std::string> readI3Config(const std::string& answer);

/// Whether each of the commands of a `runCommand` succeeded; empty when the answer makes no sense.
std::vector<bool> readI3Results(const std::string& answer);

} // namespace tavrin

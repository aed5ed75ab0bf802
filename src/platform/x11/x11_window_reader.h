#pragma once

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_window.h"

#include <xcb/res.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tavrin {

/// What can be read of a window on its own, as a set of bits.
enum class WindowPart : std::uint16_t {
    none = 0,
    visibility = 1 << 0,
    geometry = 1 << 1,
    title = 1 << 2,
    windowClass = 1 << 3,
    states = 1 << 4,
    desktop = 1 << 5,
    kind = 1 << 6,
    decorations = 1 << 7,
    shadows = 1 << 8,
    applicationID = 1 << 9,
    process = 1 << 10,
    all = (1 << 11) - 1,
};

constexpr WindowPart operator|(WindowPart a, WindowPart b) {
    return static_cast<WindowPart>(static_cast<std::uint16_t>(a) | static_cast<std::uint16_t>(b));
}
constexpr WindowPart without(WindowPart set, WindowPart part) {
    return static_cast<WindowPart>(static_cast<std::uint16_t>(set) & ~static_cast<std::uint16_t>(part));
}
constexpr bool contains(WindowPart set, WindowPart part) {
    return (static_cast<std::uint16_t>(set) & static_cast<std::uint16_t>(part)) != 0;
}

/// Reads windows: all requests of all windows are sent before the first answer is collected, so any number
/// of windows costs one round trip, and a second one for what few windows leave open.
class X11WindowReader {
public:
    struct Task {
        X11Window* window = nullptr;
        WindowPart parts = WindowPart::all;
        bool isGone = false; ///< the answer: the window does not exist any more
    };

    explicit X11WindowReader(X11Connection& server);

    void read(std::span<Task> tasks) const;

    /// The part that a change of the property outdates.
    WindowPart partOf(xcb_atom_t property) const;

private:
    struct Requests;
    struct SecondRequests;
    Requests send(const Task& task) const;
    WindowPart collect(const Requests& requests, Task& task) const;
    SecondRequests sendSecond(Task& task, WindowPart parts) const;
    void collectSecond(const SecondRequests& requests) const;
    std::optional<xcb_res_query_client_ids_cookie_t> requestClientIDs(std::span<const Task> tasks) const;
    void collectClientIDs(xcb_res_query_client_ids_cookie_t cookie, std::span<Task> tasks) const;

    X11Connection& server_;
    std::string hostName_;
};

} // namespace tavrin

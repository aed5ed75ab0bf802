#pragma once

#include "platform/x11/x11_query_connection.h"

#include <optional>
#include <set>
#include <string>

namespace tavrin {

/// What the running window manager says about itself.
struct WindowManagerFacts {
    bool isRunning = false; ///< it has announced itself and its window exists
    std::string name;       ///< empty when it does not tell
    std::set<xcb_atom_t> supported;

    bool supports(xcb_atom_t protocol) const { return supported.contains(protocol); }
};

/// Knows the running window manager; notices when it ends and when another one takes over.
class X11WindowManager final : public X11Mirror {
public:
    explicit X11WindowManager(X11QueryConnection& connection);

    /// The facts now; those of no window manager when there is none or the server does not answer.
    const WindowManagerFacts& facts(Freshness freshness = Freshness::recent);

    /// A window manager that was there this short a time ago still counts as running: restarting one or
    /// replacing it by another takes a short time.
    static constexpr Seconds absenceLimit{3};

    /// It lists its windows and moves them on request, and shows all of them to this program.
    bool isControllable(Freshness freshness = Freshness::recent);

    /// It is controllable only because it was until very recently.
    bool isAbsent() const { return absentSince_.has_value(); }

    /// The window by which it announces itself; none while none runs.
    xcb_window_t checkWindow();

    void handleEvent(const xcb_generic_event_t& event) override;
    void forget() override;

private:
    void read();

    X11QueryConnection& connection_;
    WindowManagerFacts facts_;
    xcb_window_t checkWindow_ = XCB_WINDOW_NONE;
    bool isKnown_ = false;
    bool wasControllable_ = false;
    std::optional<X11QueryConnection::Clock::time_point> absentSince_;
};

} // namespace tavrin

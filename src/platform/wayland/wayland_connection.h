#pragma once

#include "base/signal.h"
#include "base/timestamp.h"
#include "ports/runtime.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <string>

struct wl_display;
struct wl_interface;
struct wl_registry;

namespace tavrin {

/// The program's own connection to the compositor, beside the toolkit's. It reads when the event loop says
/// so; nothing waits without a bound. Handlers of its events must not end it; that of its loss may.
class WaylandConnection {
public:
    /// An object that the compositor offers to every client.
    struct Global {
        std::uint32_t name = 0;
        std::uint32_t version = 0;
    };

    /// Whether there is a compositor where the environment says. It may be that of a session that is over.
    static bool isReachable();

    /// An empty display name means the one of the environment. Returns when the compositor has listed what it
    /// offers. The error is a text for the user.
    static std::expected<std::unique_ptr<WaylandConnection>, std::string>
    open(EventLoop& eventLoop, const std::string& displayName = {});

    ~WaylandConnection();
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;

    /// `appeared` is called at once for each such global that is there, then for those that come;
    /// `vanished` for those that go.
    Token watchGlobals(const std::string& interface, std::function<void(const Global&)> appeared,
                       std::function<void(std::uint32_t name)> vanished = {});

    /// A new object for a global, at the lower of `version` and the offered version; owned by the caller.
    void* bind(const Global& global, const wl_interface& interface, std::uint32_t version);

    /// Handles events until the compositor has answered everything asked so far. False when it does not
    /// within `limit`, or is gone.
    bool roundTrip(Seconds limit = Seconds{1});

    /// Sends what was asked.
    void flush();

    bool isBroken() const;

    /// Once, when the compositor is gone.
    Token observeLoss(std::function<void()> handler) { return lost_.connect(std::move(handler)); }

private:
    struct Listener;

    explicit WaylandConnection(wl_display* display);
    void dispatch();
    bool readWithin(Seconds limit);
    void announce(std::uint32_t name, const char* interface, std::uint32_t version);
    void withdraw(std::uint32_t name);

    wl_display* display_;
    wl_registry* registry_ = nullptr;
    std::map<std::uint32_t, std::pair<std::string, Global>> globals_;
    Signal<const std::string&, const Global&> appeared_;
    Signal<const std::string&, std::uint32_t> vanished_;
    Signal<> lost_;
    Token watch_;
};

} // namespace tavrin

#pragma once

#include "base/token.h"
#include "ports/application_catalog.h"
#include "ports/runtime.h"
#include "ports/screen_list.h"
#include "ports/window_elements.h"
#include "ports/window_list.h"
#include "records/key_combo.h"

#include <expected>
#include <functional>
#include <memory>
#include <string>

namespace tavrin {

/// Everything this program sees and does of an X11 desktop.
class X11Platform {
public:
    /// Whether there is a server at all; the error is a text for the user.
    static std::expected<void, std::string> reach(const std::string& displayName);

    /// An empty display name means the one of the environment. The error is a text for the user. The
    /// collaborators must outlive the platform.
    static std::expected<std::unique_ptr<X11Platform>, std::string> open(const std::string& displayName,
                                                                         EventLoop& eventLoop,
                                                                         Scheduler& scheduler,
                                                                         ApplicationCatalog& catalog);

    ~X11Platform();
    X11Platform(const X11Platform&) = delete;
    X11Platform& operator=(const X11Platform&) = delete;

    ScreenList& screenList();
    RawWindowList& rawWindowList();
    RunningApplications& runningApplications();
    WindowElements& windowElements();
    AccessibilityTrust& accessibilityTrust();

    /// The global half of the key monitors: key presses that go to other applications. An empty token when
    /// the server does not show them.
    Token addGlobalKeyMonitor(std::function<void(const KeyEvent&)> handler);

    /// The number of a key in the input layer, by the server's number (the scan code of Qt's key events);
    /// absent when the key's position is unknown.
    std::optional<std::uint32_t> keyPosition(std::uint32_t key);

    /// A screen came, went, moved or changed its size or scale. Bursts are not merged.
    Token observeScreenParameters(std::function<void()> handler);

    /// A window manager started, ended or was replaced: the trust may have changed.
    Token observeWindowManager(std::function<void()> handler);

    /// Once, when the X server is gone. Everything answers like an empty desktop from then on.
    Token observeConnectionLoss(std::function<void()> handler);

    /// The running window manager's name, for troubleshooting; empty when there is none or it has no name.
    std::string windowManagerName();

private:
    struct Rooms;
    explicit X11Platform(std::unique_ptr<Rooms> rooms);

    std::unique_ptr<Rooms> rooms_;
};

} // namespace tavrin

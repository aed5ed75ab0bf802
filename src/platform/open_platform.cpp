#include "platform/open_platform.h"

#include "platform/desktop.h"
#include "platform/gnome/gnome_window_system.h"
#include "platform/kwin/kwin_window_system.h"
#include "platform/sway/sway_window_system.h"
#include "platform/unsupported.h"
#include "platform/wayland/wayland_connection.h"
#include "platform/x11/x11_window_system.h"

#include <cstdlib>
#include <utility>

namespace tavrin {
namespace {

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

bool isSet(const char* name) {
    return !variable(name).empty();
}

/// Where the kernel shows the displays' data; tests put a folder of their own there.
std::filesystem::path systemRoot() {
    return isSet("TAVRIN_SYSFS_ROOT") ? variable("TAVRIN_SYSFS_ROOT") : "/sys";
}

/// Qt shows its windows by the protocol of the session, unless the user wants another one.
std::unique_ptr<DesktopToolkit> waylandToolkit(int& argc, char** argv) {
    ::setenv("QT_QPA_PLATFORM", "wayland;xcb", 0);
    return std::make_unique<DesktopToolkit>(argc, argv);
}

/// Some desktops name others that they resemble, too.
bool isNamed(const char* desktop) {
    return variable("XDG_CURRENT_DESKTOP").contains(desktop);
}

constexpr std::chrono::milliseconds busPatience{500};

std::expected<std::unique_ptr<OpenedPlatform>, std::string> openKWin(int& argc, char** argv) {
    // Plasma starts a KWin that crashed again: from 6.5 on Qt then goes on in the new one.
    ::setenv("QT_WAYLAND_RECONNECT", "1", 0);
    auto toolkit = waylandToolkit(argc, argv);
    toolkit->sessionBus.open(busPatience);
    const auto folder = variable("XDG_RUNTIME_DIR");
    auto system = KWinWindowSystem::open(
        toolkit->sessionBus, {.scriptFolder = folder.empty() ? "/tmp" : folder, .systemRoot = systemRoot()},
        toolkit->eventLoop, toolkit->scheduler);
    if (!system)
        return std::unexpected(system.error());
    return makeDesktop(std::move(toolkit), std::move(*system));
}

std::expected<std::unique_ptr<OpenedPlatform>, std::string> openGnome(int& argc, char** argv) {
    auto toolkit = waylandToolkit(argc, argv);
    toolkit->sessionBus.open(busPatience);
    auto system =
        GnomeWindowSystem::open(toolkit->sessionBus, {.systemRoot = systemRoot()}, toolkit->eventLoop);
    if (!system)
        return std::unexpected(system.error());
    return makeDesktop(std::move(toolkit), std::move(*system));
}

std::expected<std::unique_ptr<OpenedPlatform>, std::string> openX11(int& argc, char** argv,
                                                                    std::unique_ptr<X11Connection> server) {
    if (!server->extensions().isWaylandBridge)
        ::setenv("QT_QPA_PLATFORM", "xcb", 0);
    auto toolkit = std::make_unique<DesktopToolkit>(argc, argv);
    auto x11 = X11WindowSystem::open(std::move(server), toolkit->eventLoop, toolkit->scheduler);
    if (!x11)
        return std::unexpected(x11.error());
    return makeDesktop(std::move(toolkit), std::move(*x11));
}

} // namespace

std::expected<std::unique_ptr<OpenedPlatform>, std::string> openPlatform(int& argc, char** argv) {
    // Qt ends the process without a word to its caller when there is no server, so the server is asked first;
    // in a Wayland session not before it is needed, because the question starts XWayland.
    std::expected<std::unique_ptr<X11Connection>, std::string> server = std::unexpected(std::string());
    const bool isX11Session = !isSet("WAYLAND_DISPLAY") || variable("XDG_SESSION_TYPE") == "x11";
    if (isX11Session)
        server = X11Connection::open({});
    if (server && !(*server)->extensions().isWaylandBridge)
        return openX11(argc, argv, std::move(*server));
    if (isSet("WAYLAND_DISPLAY") && SwayWindowSystem::reach(variable("SWAYSOCK"))) {
        auto toolkit = waylandToolkit(argc, argv);
        auto sway = SwayWindowSystem::open({.socketPath = variable("SWAYSOCK"), .systemRoot = systemRoot()},
                                           toolkit->eventLoop, toolkit->scheduler);
        if (!sway)
            return std::unexpected(sway.error());
        return makeDesktop(std::move(toolkit), std::move(*sway));
    }
    const bool isWayland = isSet("WAYLAND_DISPLAY") && WaylandConnection::isReachable();
    if (isWayland && isNamed("KDE"))
        return openKWin(argc, argv);
    if (isWayland && isNamed("GNOME"))
        return openGnome(argc, argv);
    if (!isX11Session)
        server = X11Connection::open({});
    if (server)
        return openX11(argc, argv, std::move(*server));
    if (!isSet("WAYLAND_DISPLAY"))
        return std::unexpected(server.error());
    return makeDesktop(std::make_unique<DesktopToolkit>(argc, argv),
                       std::make_unique<UnsupportedWindowSystem>());
}

} // namespace tavrin

#include "platform/open_platform.h"

#include "platform/desktop.h"
#include "platform/unsupported.h"
#include "platform/x11/x11_window_system.h"

#include <cstdlib>

namespace tavrin {
namespace {

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value != '\0';
}

} // namespace

std::expected<std::unique_ptr<OpenedPlatform>, std::string> openPlatform(int& argc, char** argv) {
    // Qt ends the process without a word to its caller when there is no server, so the server is asked first.
    const auto server = X11WindowSystem::reach({});
    if (!server && !isSet("WAYLAND_DISPLAY"))
        return std::unexpected(server.error());
    auto toolkit = std::make_unique<DesktopToolkit>(argc, argv);
    if (!server)
        return makeDesktop(std::move(toolkit), std::make_unique<UnsupportedWindowSystem>());
    auto x11 = X11WindowSystem::open({}, toolkit->eventLoop, toolkit->scheduler);
    if (!x11)
        return std::unexpected(x11.error());
    return makeDesktop(std::move(toolkit), std::move(*x11));
}

} // namespace tavrin

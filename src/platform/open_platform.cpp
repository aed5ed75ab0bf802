#include "platform/open_platform.h"

#include "platform/x11_desktop.h"

namespace tavrin {

std::expected<std::unique_ptr<OpenedPlatform>, std::string> openPlatform(int& argc, char** argv) {
    // The only one so far. Under a Wayland compositor it runs too, and is honest about what it may not do.
    return openX11Desktop(argc, argv);
}

} // namespace tavrin

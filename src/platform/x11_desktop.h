#pragma once

#include "platform/open_platform.h"

namespace tavrin {

/// A desktop on an X server, with the session services of freedesktop.org and windows made with Qt. For
/// the arguments and the error see `openPlatform`.
std::expected<std::unique_ptr<OpenedPlatform>, std::string> openX11Desktop(int& argc, char** argv);

} // namespace tavrin

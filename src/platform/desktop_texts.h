#pragma once

#include "platform/windows/window_system.h"
#include "ports/session.h"

namespace tavrin {

/// The sentences of the interface that name places of Linux desktops. `obstacle`: what keeps the program from
/// reading and moving windows now.
DesktopTexts desktopTexts(std::optional<WindowSystemObstacle> obstacle);

} // namespace tavrin

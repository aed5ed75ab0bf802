#pragma once

#include "platform/open_platform.h"
#include "platform/qt/qt_runtime.h"
#include "platform/session_bus/bus_link.h"
#include "platform/windows/window_system.h"

namespace tavrin {

/// What a window system is opened on: the application object, the event loop, the session's bus.
struct DesktopToolkit {
    /// For the arguments see `openPlatform`.
    DesktopToolkit(int& argc, char** argv);

    QtProgram program;
    QtEventLoop eventLoop;
    QtScheduler scheduler;
    BusLink sessionBus{busAddresses().session}; ///< not yet open
};

/// A desktop whose windows are arranged by `system`, with the files of POSIX, the session services of
/// freedesktop.org, and windows made with Qt: what is the same on every desktop.
std::unique_ptr<OpenedPlatform> makeDesktop(std::unique_ptr<DesktopToolkit> toolkit,
                                            std::unique_ptr<WindowSystem> system);

} // namespace tavrin

#pragma once

#include "platform/open_platform.h"
#include "platform/qt/qt_runtime.h"
#include "platform/windows/window_system.h"

namespace tavrin {

/// The application object and the event loop, on which a window system is opened.
struct DesktopToolkit {
    /// For the arguments see `openPlatform`.
    DesktopToolkit(int& argc, char** argv);

    QtProgram program;
    QtEventLoop eventLoop;
    QtScheduler scheduler;
};

/// A desktop whose windows are arranged by `system`, with the files of POSIX, the session services of
/// freedesktop.org, and windows made with Qt: what is the same on every desktop.
std::unique_ptr<OpenedPlatform> makeDesktop(std::unique_ptr<DesktopToolkit> toolkit,
                                            std::unique_ptr<WindowSystem> system);

} // namespace tavrin

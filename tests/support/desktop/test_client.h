#pragma once

#include "support/desktop/process.h"
#include "support/desktop/windows.h"

#include <array>
#include <csignal>
#include <map>
#include <vector>

namespace tavrin::desktop {

/// A window to ask for. `frame` is what the client asks for; the window manager draws its borders around it.
struct WindowRequest {
    std::string applicationClass = "TestClient";
    std::string title = "Untitled";
    Rect frame{100, 100, 400, 300};
    std::string type;               ///< such as "DIALOG"; empty for none
    bool isDecorated = true;        ///< false asks for no title bar and border
    std::array<int, 4> shadow{};    ///< client-side: left, right, top, bottom
    std::array<int, 2> increment{}; ///< size steps of a terminal
};

/// An application of the test's making: one process with any number of windows.
class TestClient {
public:
    /// `command` starts the client program, with its arguments.
    TestClient(Windows& windows, QStringList command, const QProcessEnvironment& environment,
               const QString& log);

    bool isRunning() const { return process_.isRunning(); }
    qint64 pid() const { return process_.pid(); }

    /// Opens a window and waits until the window manager has taken it up.
    std::optional<WindowHandle> open(const WindowRequest& request);
    bool retitle(const WindowHandle& window, const std::string& title);
    bool destroy(const WindowHandle& window);
    /// Changes a property of the window so many times, as fast as the server takes it. Ends with `endFlood`;
    /// until then nothing else can be asked.
    void startFlood(const WindowHandle& window, const std::string& property, int count);
    bool endFlood() { return process_.readLine() == "done"; }
    /// From now on the first move of one of these windows makes all the others disappear.
    bool vanishOnMove(const std::vector<WindowHandle>& windows);
    /// Makes the window fullscreen, and again whenever somebody makes it leave that state.
    bool stayFullscreen(const WindowHandle& window);

    /// The process stops answering; its windows stay on the screen.
    void hang() { process_.sendSignal(SIGSTOP); }
    void resume() { process_.sendSignal(SIGCONT); }

private:
    std::optional<std::string> ask(const std::string& command);

    Windows& windows_;
    Process process_;
    std::map<std::string, std::string> names_; ///< what the client calls its windows, by their handles
};

} // namespace tavrin::desktop

#include "support/desktop/x_desktop.h"

#include "support/desktop/wait.h"

#include <QFile>

#include <algorithm>
#include <csignal>
#include <sys/socket.h>

namespace tavrin::desktop {

XDesktop::XDesktop(const Options& options) : Desktop(options) {
    require(server_.start(logs_, environment_), "Xorg with the dummy driver");
    environment_.insert("DISPLAY", server_.display());
    x_ = std::make_unique<XConnection>(server_.display().toStdString());
    require(x_->isOpen(), "X connection");
    outputs_ = std::make_unique<XOutputs>(*x_);
    windows_ = std::make_unique<XWindows>(*x_);
    keyboard_ = std::make_unique<XKeyboard>(*x_);
    for (std::size_t index = 0; index < options.displays.size(); ++index)
        require(outputs_->plug(static_cast<int>(index), options.displays[index],
                               MonitorIdentity{.serial = static_cast<std::uint32_t>(index + 1)}),
                "displays");
    outputs_->makePrimary(0);
    if (options.hasWindowManager)
        require(startWindowManager(options.windowManager), "window manager");
}

XDesktop::~XDesktop() {
    stopWindowManager();
}

void XDesktop::crash() {
    ucred server{};
    socklen_t size = sizeof server;
    const int socket = xcb_get_file_descriptor(x_->raw());
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &server, &size) == 0 && server.pid > 1)
        ::kill(server.pid, SIGKILL);
}

bool XDesktop::startWindowManager(const QString& wanted) {
    auto command =
        QProcess::splitCommand(wanted.isEmpty() ? qEnvironmentVariable("TAVRIN_TEST_WM", "openbox") : wanted);
    const QString program = command.takeFirst();
    if (program == "xfwm4")
        command.append("--compositor=off");
    if (program == "i3") {
        // Without a configuration it would ask for one.
        QFile configuration(scratch_.filePath("i3"));
        if (!configuration.open(QIODevice::WriteOnly) ||
            configuration.write("# i3 config file (v4)\n"
                                "font fixed\n"
                                "for_window [all] floating enable, border none\n") < 0)
            return false;
        command.append({"-c", configuration.fileName()});
    }
    windowManager_ = startProgram(program, command);
    if (!windowManager_)
        return false;
    // Managers announce themselves before they are ready, and openbox leaves a window that comes in between
    // out of its list for good. So show it a window, and once that is taken up another that must be listed.
    const auto isListed = [this](xcb_window_t window) {
        const auto windows = windows_->managed();
        return std::find(windows.begin(), windows.end(), window) != windows.end();
    };
    const auto first = openProbe();
    if (!waitUntil([&] { return !x_->cardinals(first, "WM_STATE").empty(); }))
        return false;
    xcb_destroy_window(x_->raw(), first);
    const auto second = openProbe();
    const bool works = waitUntil([&] { return isListed(second); });
    xcb_destroy_window(x_->raw(), second);
    return works && waitUntil([&] { return !isListed(second); });
}

xcb_window_t XDesktop::openProbe() {
    auto* c = x_->raw();
    const auto window = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, x_->root(), 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    x_->watch(window);
    xcb_map_window(c, window);
    return window;
}

void XDesktop::stopWindowManager() {
    windowManager_.reset();
}

} // namespace tavrin::desktop

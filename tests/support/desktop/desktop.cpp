#include "support/desktop/desktop.h"

#include "support/desktop/wait.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace tavrin::desktop {

namespace {

void require(bool isUp, const char* part, const QString& logs) {
    if (isUp)
        return;
    std::fprintf(stderr, "The private desktop has no %s; see the logs in %s\n", part, qPrintable(logs));
    std::abort();
}

} // namespace

Desktop::Desktop(const Options& options) {
    const QString base = qEnvironmentVariable("TAVRIN_TEST_LOGS", QDir::tempPath() + "/tavrin-desktop-logs-" +
                                                                      QString::number(::getuid()));
    logs_ = base + "/" + QString::fromStdString(options.name);
    QDir(logs_).removeRecursively();
    require(scratch_.isValid() && QDir().mkpath(logs_), "scratch folder", logs_);
    prepareEnvironment();

    require(server_.start(logs_, environment_), "X server", logs_);
    environment_.insert("DISPLAY", server_.display());
    require(sessionBus_.start("session-bus", scratch_.path(), environment_), "session bus", scratch_.path());
    environment_.insert("DBUS_SESSION_BUS_ADDRESS", sessionBus_.address());
    require(systemBus_.start("system-bus", scratch_.path(), environment_), "system bus", scratch_.path());
    environment_.insert("DBUS_SYSTEM_BUS_ADDRESS", systemBus_.address());

    x_ = std::make_unique<XConnection>(server_.display().toStdString());
    require(x_->isOpen(), "X connection", logs_);
    outputs_ = std::make_unique<Outputs>(*x_, server_.kind());
    windows_ = std::make_unique<Windows>(*x_);
    keyboard_ = std::make_unique<Keyboard>(*x_);
    for (std::size_t index = 0; index < options.displays.size(); ++index)
        require(outputs_->plug(static_cast<int>(index), options.displays[index],
                               MonitorIdentity{.serial = static_cast<std::uint32_t>(index + 1)}),
                "displays", logs_);
    outputs_->makePrimary(0);

    if (options.hasWindowManager)
        require(startWindowManager(options.windowManager), "window manager", logs_);
    tray_ = std::make_unique<Tray>(sessionBus_.connection());
    if (options.hasTray)
        require(tray_->appear(), "tray", logs_);
}

Desktop::~Desktop() {
    stopWindowManager();
}

void Desktop::prepareEnvironment() {
    // Nothing of the caller's own desktop may leak in, or the tests would touch real settings and windows.
    for (const auto* name : {"PATH", "USER", "LOGNAME", "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"})
        if (qEnvironmentVariableIsSet(name))
            environment_.insert(name, qEnvironmentVariable(name));
    const auto folder = [&](const char* variable, const QString& path) {
        QDir(scratch_.path()).mkpath(path);
        environment_.insert(variable, scratch_.filePath(path));
    };
    folder("HOME", "home");
    folder("XDG_CONFIG_HOME", "home/.config");
    folder("XDG_DATA_HOME", "home/.local/share");
    folder("XDG_STATE_HOME", "home/.local/state");
    folder("XDG_CACHE_HOME", "home/.cache");
    folder("XDG_RUNTIME_DIR", "runtime");
    QFile::setPermissions(scratch_.filePath("runtime"),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    environment_.insert("LANG", "C.UTF-8");
    environment_.insert("NO_AT_BRIDGE", "1"); // GTK would look for a bus that is not here
}

bool Desktop::startWindowManager(const QString& wanted) {
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

xcb_window_t Desktop::openProbe() {
    auto* c = x_->raw();
    const auto window = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, x_->root(), 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    x_->watch(window);
    xcb_map_window(c, window);
    return window;
}

void Desktop::stopWindowManager() {
    windowManager_.reset();
}

std::unique_ptr<TestClient> Desktop::startClient() {
    return std::make_unique<TestClient>(*windows_, environment_, log("clients"));
}

std::unique_ptr<Process> Desktop::startProgram(const QString& program, const QStringList& arguments) {
    auto process = std::make_unique<Process>();
    if (!process->start(program, arguments, environment_, log(program.section('/', -1))))
        return nullptr;
    return process;
}

} // namespace tavrin::desktop

#include "support/desktop/gnome_desktop.h"
#include "support/desktop/kwin_desktop.h"
#include "support/desktop/sway_desktop.h"
#include "support/desktop/x_desktop.h"

#include <QDir>
#include <QFile>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace tavrin::desktop {

std::unique_ptr<Desktop> Desktop::open(const Options& options) {
    const auto wanted = qEnvironmentVariable("TAVRIN_TEST_DESKTOP", "x11");
    if (wanted == "x11")
        return std::make_unique<XDesktop>(options);
    if (wanted == "sway")
        return std::make_unique<SwayDesktop>(options);
    if (wanted == "kwin")
        return std::make_unique<KWinDesktop>(options);
    if (wanted == "gnome")
        return std::make_unique<GnomeDesktop>(options);
    std::fprintf(stderr, "TAVRIN_TEST_DESKTOP=%s: there is no such desktop\n", qPrintable(wanted));
    std::abort();
}

bool Keyboard::type(std::string_view text) {
    for (const char character : text)
        if (!press(static_cast<unsigned char>(character))) // in ASCII the symbol is the character
            return false;
    return true;
}

void Desktop::require(bool isUp, const char* part) const {
    if (isUp)
        return;
    std::fprintf(stderr, "The private desktop has no %s; see the logs in %s\n", part, qPrintable(logs_));
    std::abort();
}

Desktop::Desktop(const Options& options) {
    const QString base = qEnvironmentVariable("TAVRIN_TEST_LOGS", QDir::tempPath() + "/tavrin-desktop-logs-" +
                                                                      QString::number(::getuid()));
    logs_ = base + "/" + QString::fromStdString(options.name);
    QDir(logs_).removeRecursively();
    require(scratch_.isValid() && QDir().mkpath(logs_), "scratch folder");
    prepareEnvironment();
    require(sessionBus_.start("session-bus", scratch_.path(), environment_), "session bus");
    environment_.insert("DBUS_SESSION_BUS_ADDRESS", sessionBus_.address());
    require(systemBus_.start("system-bus", scratch_.path(), environment_), "system bus");
    environment_.insert("DBUS_SYSTEM_BUS_ADDRESS", systemBus_.address());
    tray_ = std::make_unique<Tray>(sessionBus_.connection());
    if (options.hasTray)
        require(tray_->appear(), "tray");
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

void Desktop::prepareWaylandSession(const QString& desktopName) {
    environment_.insert("XDG_SESSION_TYPE", "wayland");
    environment_.insert("XDG_CURRENT_DESKTOP", desktopName);
    environment_.insert("TAVRIN_SYSFS_ROOT", scratch_.filePath("sys"));
    // Qt's Wayland plug-in and Mesa never free what they allocate; leaks are looked for on X.
    environment_.insert("ASAN_OPTIONS", environment_.value("ASAN_OPTIONS") + ":detect_leaks=0");
}

std::unique_ptr<TestClient> Desktop::startClient() {
    return std::make_unique<TestClient>(windows(), commandLine(TAVRIN_TEST_CLIENT, {}), environment_,
                                        log("clients"));
}

std::unique_ptr<TestClient> Desktop::startToolkitClient() {
    if (!environment_.contains("WAYLAND_DISPLAY"))
        return startClient();
    return std::make_unique<TestClient>(windows(), commandLine(TAVRIN_WAYLAND_TEST_CLIENT, {}), environment_,
                                        log("toolkit-clients"));
}

std::unique_ptr<Process> Desktop::startProgram(const QString& program, const QStringList& arguments) {
    auto process = std::make_unique<Process>();
    auto command = commandLine(program, arguments);
    const auto first = command.takeFirst();
    if (!process->start(first, command, environment_, log(program.section('/', -1))))
        return nullptr;
    return process;
}

} // namespace tavrin::desktop

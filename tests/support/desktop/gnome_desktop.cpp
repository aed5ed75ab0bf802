#include "support/desktop/gnome_desktop.h"

#include "support/desktop/wait.h"

#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <sys/stat.h>

namespace tavrin::desktop {

namespace {

constexpr auto extension = "windows@tavrin.org";

// Permits the shell's method that runs a script, to everybody on the private bus.
constexpr auto harnessExtension = R"(class Harness {
    enable() { global.context.unsafe_mode = true; }
    disable() {}
}
)";

constexpr auto settings = R"([org/gnome/shell]
enabled-extensions=['windows@tavrin.org', 'harness@tavrin.org']
welcome-dialog-last-shown-version='99'
[org/gnome/desktop/interface]
enable-animations=false
)";

// What the other scripts use.
constexpr auto vocabulary = R"(globalThis.harness = {
    // Those that have a place; the shell gives it to a window when it first shows it.
    windows: () => global.get_window_actors().filter(actor => actor.visible).map(actor => actor.meta_window),
    window: id => harness.windows().find(w => String(w.get_id()) === id),
    keyboard: imports.gi.Clutter.get_default_backend().get_default_seat()
        .create_virtual_device(imports.gi.Clutter.InputDeviceType.KEYBOARD_DEVICE),
    describe: w => {
        const frame = w.get_frame_rect();
        return {
            id: String(w.get_id()), title: w.get_title() || '', pid: w.get_pid(),
            frame: [frame.x, frame.y, frame.width, frame.height],
            visible: !w.minimized && w.located_on_workspace(global.workspace_manager.get_active_workspace()),
            focused: w.has_focus(), fullscreen: w.is_fullscreen(),
        };
    },
    // Each monitor: its name, x, y and whether it is the primary one.
    arrange: monitors => {
        const name = 'org.gnome.Mutter.DisplayConfig';
        const call = (method, parameters, then) => Gio.DBus.session.call(name, '/org/gnome/Mutter/DisplayConfig',
            name, method, parameters, null, Gio.DBusCallFlags.NONE, -1, null, then);
        call('GetCurrentState', null, (bus, reply) => {
            const [serial, known] = bus.call_finish(reply).recursiveUnpack();
            const mode = monitor => known.find(([[connector]]) => connector === monitor)[1][0][0];
            call('ApplyMonitorsConfig', new GLib.Variant('(uua(iiduba(ssa{sv}))a{sv})', [serial, 1, monitors.map(
                ([monitor, x, y, primary]) => [x, y, 1, 0, primary, [[monitor, mode(monitor), {}]]]), {}]), null);
        });
    },
};
Main.overview.hide();
true;
)";

Rect rectOf(const QJsonValue& value) {
    const auto sides = value.toArray();
    return {sides[0].toDouble(), sides[1].toDouble(), sides[2].toDouble(), sides[3].toDouble()};
}

bool write(const QString& path, const QByteArray& text) {
    QDir().mkpath(path.section('/', 0, -2));
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

} // namespace

QJsonValue GnomeTalk::run(const QString& script) {
    auto call =
        QDBusMessage::createMethodCall("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell", "Eval");
    const auto answer = callAndServe(bus_.connection(), call << script).arguments();
    if (answer.size() != 2 || !answer[0].toBool())
        return QJsonValue::Null;
    return QJsonDocument::fromJson("[" + answer[1].toString().toUtf8() + "]").array().at(0);
}

bool GnomeOutputs::plug(int output, const Rect& area, const std::optional<MonitorIdentity>& identity) {
    identifyOutput(systemRoot_, QString::fromStdString(name(output)), identity);
    plugged_[output] = area;
    return apply();
}

bool GnomeOutputs::unplug(int output) {
    plugged_.erase(output);
    return apply();
}

bool GnomeOutputs::apply() {
    QJsonArray monitors;
    std::vector<Rect> wanted;
    for (const auto& [output, area] : plugged_) {
        monitors.append(QJsonArray{QString::fromStdString(name(output)), area.x, area.y, monitors.isEmpty()});
        wanted.push_back(area);
    }
    shell_.run("harness.arrange(" + QJsonDocument(monitors).toJson(QJsonDocument::Compact) + ")");
    return waitUntil([&] { return std::ranges::is_permutation(areas(), wanted); });
}

std::vector<Rect> GnomeOutputs::areas() {
    std::vector<Rect> areas;
    for (const auto& output : outputs_.outputs())
        areas.push_back(output.frame);
    return areas;
}

void GnomeKeyboard::change(std::uint32_t position, Change change) {
    shell_.run(QString("harness.keyboard.notify_key(GLib.get_monotonic_time(), %1, %2)")
                   .arg(position)
                   .arg(change == Change::down ? 1 : 0));
}

std::vector<ListedWindows::Listed> GnomeWindows::list() {
    std::vector<Listed> windows;
    for (const QJsonValue window : shell_.run("harness.windows().map(harness.describe)").toArray())
        windows.push_back({.id = window["id"].toString().toStdString(),
                           .title = window["title"].toString().toStdString(),
                           .pid = window["pid"].toInteger(),
                           .frame = rectOf(window["frame"]),
                           .isVisible = window["visible"].toBool(),
                           .isFocused = window["focused"].toBool(),
                           .isFullscreen = window["fullscreen"].toBool()});
    return windows;
}

QJsonValue GnomeWindows::with(const WindowHandle& window, const QString& call) {
    return shell_.run(QString("harness.window('%1').%2").arg(QString::fromStdString(window.id()), call));
}

void GnomeWindows::tell(const WindowHandle& window, const Rect& frame) {
    unmaximise(window);
    with(window, QString("move_frame(true, %1, %2)").arg(frame.x).arg(frame.y));
    with(window, QString("move_resize_frame(true, %1, %2, %3, %4)")
                     .arg(frame.x)
                     .arg(frame.y)
                     .arg(frame.width)
                     .arg(frame.height));
}

bool GnomeWindows::place(const WindowHandle& window, const Rect& frame) {
    return waitUntil([&] {
        tell(window, frame);
        return visibleFrame(window) == frame;
    });
}

bool GnomeWindows::maximise(const WindowHandle& window) {
    with(window, "maximize(Meta.MaximizeFlags.BOTH)");
    return waitUntil([&] { return with(window, "get_maximized()").toInt() == 3; });
}

bool GnomeWindows::unmaximise(const WindowHandle& window) {
    if (isFullscreen(window))
        with(window, "unmake_fullscreen()");
    if (with(window, "get_maximized()").toInt() != 0)
        with(window, "unmaximize(Meta.MaximizeFlags.BOTH)");
    return waitUntil([&] { return with(window, "get_maximized()").toInt() == 0; });
}

bool GnomeWindows::makeFullscreen(const WindowHandle& window) {
    const auto before = visibleFrame(window);
    with(window, "make_fullscreen()");
    return waitUntil([&] { return isFullscreen(window) && visibleFrame(window) != before; });
}

void GnomeWindows::activate(const WindowHandle& window) {
    with(window, "activate(global.display.get_current_time_roundtrip())");
    waitUntil([&] { return with(window, "has_focus()").toBool(); });
}

void GnomeWindows::close(const WindowHandle& window) {
    with(window, "delete(global.display.get_current_time_roundtrip())");
}

GnomeDesktop::GnomeDesktop(const Options& options) : Desktop(options) {
    // The shell tells the harness of no move: whoever waits for one looks again at every beat.
    heartbeat_.start(20);
    prepareWaylandSession("GNOME");
    installExtensions();
    // Where no X server has run yet the shell makes the folder, closed to others, and refuses it for that.
    constexpr auto sockets = "/tmp/.X11-unix";
    if (::mkdir(sockets, 0777) == 0)
        require(::chmod(sockets, 01777) == 0, "folder for X sockets");
    auto environment = environment_;
    environment.insert("LIBGL_ALWAYS_SOFTWARE", "1");
    QStringList arguments{"--headless", "--wayland-display", "wayland-test"};
    for (const auto& display : options.displays)
        arguments << "--virtual-monitor" << QString("%1x%2").arg(display.width).arg(display.height);
    require(process_.start("gnome-shell", arguments, environment, log("gnome-shell")), "GNOME Shell");
    require(waitUntil([&] { return shell_.run("Main.layoutManager._startingUp === false").toBool(); }) &&
                shell_.run(vocabulary).toBool(),
            "GNOME Shell");
    environment_.insert("WAYLAND_DISPLAY", environment_.value("XDG_RUNTIME_DIR") + "/wayland-test");
    for (const char* variable : {"DISPLAY", "XAUTHORITY"}) {
        const auto value = shell_.run(QString("GLib.getenv('%1')").arg(variable)).toString();
        environment_.insert(variable, value);
        qputenv(variable, value.toUtf8()); // the harness, too, is a client
    }
    auto connection = WaylandConnection::open(loop_, environment_.value("WAYLAND_DISPLAY").toStdString());
    require(connection.has_value(), "connection to the shell");
    connection_ = std::move(*connection);
    keyboard_ = std::make_unique<GnomeKeyboard>(shell_, *connection_);
    outputs_ = std::make_unique<GnomeOutputs>(shell_, *connection_, scratch_.filePath("sys"));
    x_ = std::make_unique<XConnection>(environment_.value("DISPLAY").toStdString());
    require(x_->isOpen(), "X connection");
    int output = 0;
    for (const auto& display : options.displays) {
        const MonitorIdentity identity{.serial = static_cast<std::uint32_t>(output + 1)};
        require(outputs_->plug(output++, display, identity), "displays");
    }
}

void GnomeDesktop::installExtensions() {
    environment_.insert("GSETTINGS_BACKEND", "keyfile");
    const auto folder = home() + "/.local/share/gnome-shell/extensions/";
    bool isDone = write(home() + "/.config/glib-2.0/settings/keyfile", settings);
    const auto harness = folder + "harness@tavrin.org/";
    const QByteArray body = harnessExtension;
    isDone &= write(harness + "metadata.json", R"({"uuid": "harness@tavrin.org", "name": "Harness",
        "description": "Lets the tests in.", "shell-version": ["43", "44", "45", "46", "47", "48"]})");
    isDone &= write(harness + "__init__.js", body + "var extension = {init: () => new Harness()};\n");
    isDone &= write(harness + "extension.js", body + "export default Harness;\n");
    const auto source = QString(TAVRIN_GNOME_EXTENSIONS) + "/" + extension;
    isDone &= QDir().mkpath(folder + extension);
    for (const auto& name : QDir(source).entryList(QDir::Files))
        isDone &= QFile::copy(source + "/" + name, folder + extension + "/" + name);
    require(isDone, "extensions");
}

bool GnomeDesktop::disableExtension() {
    auto call = QDBusMessage::createMethodCall("org.gnome.Shell", "/org/gnome/Shell",
                                               "org.gnome.Shell.Extensions", "DisableExtension");
    return callAndServe(sessionBus().connection(), call << extension).arguments().value(0).toBool();
}

void GnomeDesktop::setLockScreen(bool isShown) {
    shell_.run(isShown ? "Main.sessionMode.pushMode('unlock-dialog')"
                       : "Main.sessionMode.popMode('unlock-dialog')");
}

} // namespace tavrin::desktop

#include "support/desktop/sway_desktop.h"

#include "support/desktop/wait.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <csignal>
#include <unistd.h>

namespace tavrin::desktop {

namespace {

/// "nobody" on Debian: XWayland turns away a user without a name.
constexpr auto unprivileged = "65534";

// Windows of the test's making are floated, as a person would; the program's own are left to sway.
constexpr auto configuration = R"(font pango:monospace 10
default_border normal 2
default_floating_border normal 2
floating_minimum_size 20 x 20
for_window [class=".*"] floating enable
for_window [app_id="^test"] floating enable
xwayland force
exec echo "$WAYLAND_DISPLAY $DISPLAY $SWAYSOCK" > $XDG_RUNTIME_DIR/starting && mv $XDG_RUNTIME_DIR/starting $XDG_RUNTIME_DIR/started
)";

Rect rectOf(const QJsonValue& value) {
    return {value["x"].toDouble(), value["y"].toDouble(), value["width"].toDouble(),
            value["height"].toDouble()};
}

QString placement(const Rect& frame) {
    return QString("fullscreen disable, resize set %1 px %2 px, move absolute position %3 px %4 px")
        .arg(frame.width)
        .arg(frame.height)
        .arg(frame.x)
        .arg(frame.y);
}

QString setting(const QString& output, const Rect& area) {
    return QString("output %1 resolution %2x%3 position %4 %5")
        .arg(output)
        .arg(area.width)
        .arg(area.height)
        .arg(area.x)
        .arg(area.y);
}

bool write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

bool SwayTalk::run(const QString& commands) {
    const auto answer = questions_->ask(I3Question::runCommand, commands.toStdString(), Seconds{5});
    const auto results = QJsonDocument::fromJson(QByteArray::fromStdString(answer.value_or(""))).array();
    for (const QJsonValue result : results)
        if (!result["success"].toBool())
            return false;
    return !results.isEmpty();
}

QJsonValue SwayTalk::tree() {
    const auto answer = questions_->ask(I3Question::tree, {}, Seconds{5});
    // Titles may hold any bytes.
    const auto text = QString::fromUtf8(answer.value_or("").c_str());
    return QJsonDocument::fromJson(text.toUtf8()).object();
}

std::map<QString, Rect> SwayOutputs::active() {
    std::map<QString, Rect> outputs;
    for (const QJsonValue output : sway_.tree()["nodes"].toArray())
        if (!output["name"].toString().startsWith("__"))
            outputs[output["name"].toString()] = rectOf(output["rect"]);
    return outputs;
}

std::vector<Rect> SwayOutputs::areas() {
    std::vector<Rect> areas;
    for (const auto& [name, area] : active())
        areas.push_back(area);
    return areas;
}

bool SwayOutputs::plug(int output, const Rect& area, const std::optional<MonitorIdentity>& identity) {
    auto& name = names_[output];
    if (name.isEmpty() || !active().contains(name)) {
        name = QString("X11-%1").arg(++lastNumber_);
        identifyOutput(systemRoot_, name, identity);
        if (!active().contains(name) && !sway_.run("create_output"))
            return false;
    }
    identifyOutput(systemRoot_, name, identity);
    return waitUntil([&] { return active().contains(name); }) && sway_.run(setting(name, area)) &&
           waitUntil([&] { return active()[name] == area; });
}

QString SwayOutputs::configuration() {
    QString lines;
    for (const auto& [name, area] : active())
        lines += setting(name, area) + '\n';
    return lines;
}

xcb_window_t SwayOutputs::window(const QString& name) {
    auto* c = server_->raw();
    const Reply<xcb_query_tree_reply_t> tree{
        xcb_query_tree_reply(c, xcb_query_tree(c, server_->root()), nullptr)};
    const auto wanted = "wlroots - " + name.toStdString();
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i) {
        const auto child = xcb_query_tree_children(tree.get())[i];
        if (server_->text(child, "_NET_WM_NAME") == wanted)
            return child;
    }
    return XCB_NONE;
}

bool SwayOutputs::unplug(int output) {
    const auto name = names_[output];
    const auto window = this->window(name);
    if (window == XCB_NONE)
        return false;
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = server_->atom("WM_PROTOCOLS");
    event.data.data32[0] = server_->atom("WM_DELETE_WINDOW");
    xcb_send_event(server_->raw(), 0, window, 0, reinterpret_cast<const char*>(&event));
    xcb_flush(server_->raw());
    return waitUntil([&] { return !active().contains(name); });
}

void SwayWindows::collect(const QJsonValue& node, std::vector<Listed>& leaves) {
    for (const auto* kind : {"nodes", "floating_nodes"})
        for (const QJsonValue child : node[kind].toArray())
            collect(child, leaves);
    if (!node["pid"].isDouble())
        return;
    Rect frame = rectOf(node["rect"]);
    const double titleBar = node["deco_rect"]["height"].toDouble();
    frame.y -= titleBar;
    frame.height += titleBar;
    leaves.push_back({.id = QString::number(node["id"].toInteger()).toStdString(),
                      .title = node["name"].toString().toStdString(),
                      .pid = node["pid"].toInteger(),
                      .xWindow = static_cast<std::uint32_t>(node["window"].toInteger()),
                      .frame = frame,
                      .isVisible = node["visible"].toBool(),
                      .isFocused = node["focused"].toBool(),
                      .isFullscreen = node["fullscreen_mode"].toInt() != 0,
                      .isTiled = node["type"].toString() != "floating_con"});
}

std::vector<ListedWindows::Listed> SwayWindows::list() {
    std::vector<Listed> leaves;
    collect(sway_.tree(), leaves);
    return leaves;
}

bool SwayWindows::isTiled(const WindowHandle& window) {
    const auto found = listed(window);
    return found && found->isTiled;
}

bool SwayWindows::isShown(const WindowHandle& window) {
    const auto found = listed(window);
    return found && found->isVisible;
}

bool SwayWindows::tell(const WindowHandle& window, const QString& command) {
    return sway_.run(QString("[con_id=%1] %2").arg(QString::fromStdString(window.id()), command));
}

void SwayWindows::tell(const WindowHandle& window, const Rect& frame) {
    tell(window, placement(frame));
}

bool SwayWindows::place(const WindowHandle& window, const Rect& frame) {
    // sway 1.10 places a new window once more when its client has drawn it.
    return waitUntil([&] {
               const auto seen = visibleFrame(window);
               if (seen && seen != frame)
                   tell(window, frame);
               return !seen || seen == frame;
           }) &&
           visibleFrame(window) == frame;
}

bool SwayWindows::setFullscreen(const WindowHandle& window, bool isWanted) {
    return tell(window, QString(isWanted ? "fullscreen enable" : "fullscreen disable")) && waitUntil([&] {
               const auto found = listed(window);
               if (!found || found->isFullscreen != isWanted)
                   return false;
               const auto fills = [&](const QJsonValue& output) {
                   return rectOf(output["rect"]) == found->frame;
               };
               const auto outputs = sway_.tree()["nodes"].toArray();
               return std::any_of(outputs.begin(), outputs.end(), fills) == isWanted;
           });
}

bool SwayKeyboard::focus() {
    const auto window = outputs_.anyWindow();
    xcb_set_input_focus(server_.raw(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    server_.sync();
    return window != XCB_NONE;
}

SwayDesktop::SwayDesktop(const Options& options) : Desktop(options) {
    // sway tells of no move: whoever waits for one looks again at every beat.
    heartbeat_.start(20);
    require(server_.start(logs_, environment_, XServer::Kind::virtualFramebuffer), "X server");
    x_ = std::make_unique<XConnection>(server_.display().toStdString());
    require(x_->isOpen(), "X connection");
    xcb_set_access_control(x_->raw(), XCB_ACCESS_CONTROL_DISABLE); // for the other user
    // sway uses only those that are there when it starts.
    for (const auto* name : {"WM_PROTOCOLS", "WM_DELETE_WINDOW", "_NET_WM_NAME", "UTF8_STRING"})
        x_->atom(name);
    x_->sync();
    start(options.displays.size());
    outputs_.adopt(*x_);
    keyboard_ = std::make_unique<SwayKeyboard>(*x_, outputs_);
    for (std::size_t index = 0; index < options.displays.size(); ++index)
        require(outputs_.plug(static_cast<int>(index), options.displays[index],
                              MonitorIdentity{.serial = static_cast<std::uint32_t>(index + 1)}),
                "displays");
}

SwayDesktop::~SwayDesktop() {
    // Where XWayland was still starting, sway alone would leave it behind.
    sway_.sendSignal(SIGCONT);
    sway_.sendSignal(SIGTERM);
    waitUntil([&] { return !sway_.isRunning(); }, std::chrono::seconds(5));
    if (session_ > 1)
        ::kill(-session_, SIGKILL);
}

void SwayDesktop::start(std::size_t outputCount) {
    const auto runtime = this->runtime();
    QDir().mkpath(runtime);
    QDir().mkpath(scratch_.filePath("sys/class/drm"));
    require(write(runtime + "/config", configuration), "configuration");
    QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (::geteuid() == 0) {
        QFile::setPermissions(scratch_.path(), QFile::permissions(scratch_.path()) | QFile::ExeOther);
        require(::chown(qPrintable(runtime), 65534, 65534) == 0, "folder of the other user");
    }
    prepareWaylandSession("sway");
    auto environment = environment_;
    environment.insert("HOME", runtime);
    environment.insert("XDG_RUNTIME_DIR", runtime);
    environment.insert("DISPLAY", server_.display());
    environment.insert("WLR_BACKENDS", "x11");
    environment.insert("WLR_X11_OUTPUTS", QString::number(outputCount));
    environment.insert("WLR_RENDERER", "pixman");
    // A session of its own, so that all of it can be ended.
    require(sway_.start("setsid", commandLine("sway", {"-c", runtime + "/config"}), environment, log("sway")),
            "sway");
    session_ = static_cast<pid_t>(sway_.pid());
    QFile started(runtime + "/started");
    require(waitUntil([&] { return started.exists() || !sway_.isRunning(); }) &&
                started.open(QIODevice::ReadOnly),
            "sway");
    const auto told = QString(started.readAll()).split(' ');
    require(told.size() == 3, "sway's environment");
    environment_.insert("WAYLAND_DISPLAY", runtime + "/" + told[0]);
    environment_.insert("DISPLAY", told[1]);
    environment_.insert("SWAYSOCK", told[2].trimmed());
    talk_.open(told[2].trimmed().toStdString());
}

bool SwayDesktop::configure(const QString& lines) {
    QFile file(scratch_.filePath("sway/config"));
    return file.open(QIODevice::Append) && file.write((outputs_.configuration() + lines).toUtf8()) > 0 &&
           file.flush() && talk_.run("reload");
}

QStringList SwayDesktop::commandLine(const QString& program, const QStringList& arguments) {
    const bool isOwn = program.contains('/') && !program.contains("test-client");
    if (::geteuid() != 0 || isOwn)
        return QStringList(program) + arguments;
    auto reachable = program;
    if (program.contains('/')) {
        // The other user may not see the build's folder.
        reachable = scratch_.filePath("sway/" + program.section('/', -1));
        if (!QFile::exists(reachable))
            QFile::copy(program, reachable);
    }
    return QStringList{"setpriv",        "--reuid",     unprivileged, "--regid", unprivileged,
                       "--clear-groups", "--pdeathsig", "KILL",       reachable} +
           arguments;
}

} // namespace tavrin::desktop

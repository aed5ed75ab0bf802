#include "support/desktop/kwin_desktop.h"

#include "fake-input-client-protocol.h"
#include "kde-output-device-v2-client-protocol.h"
#include "kde-output-management-v2-client-protocol.h"
#include "support/desktop/wait.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <algorithm>
#include <array>

namespace tavrin::desktop {

namespace {

Rect rectOf(const QJsonValue& value) {
    const auto sides = value.toArray();
    return {sides[0].toDouble(), sides[1].toDouble(), sides[2].toDouble(), sides[3].toDouble()};
}

bool isNear(const Rect& a, const Rect& b) {
    return frameDistance(a, b) < 1;
}

} // namespace

void KWinTalk::open(const QDBusConnection& bus, const QString& folder) {
    bus_ = bus;
    channel_ = std::make_unique<KWinScriptChannel>(
        bus, KWinScriptChannel::Options{.folder = folder.toStdString(), .name = "tavrin-harness"});
}

QJsonObject KWinTalk::ask(QJsonObject question) {
    return channel_->ask(question, Seconds(5)).value_or(QJsonObject());
}

void KWinTalk::invoke(const QString& shortcut) {
    auto call = QDBusMessage::createMethodCall("org.kde.kglobalaccel", "/component/kwin",
                                               "org.kde.kglobalaccel.Component", "invokeShortcut");
    callAndServe(*bus_, call << shortcut);
}

QVariantMap KWinTalk::facts(const WindowHandle& window) {
    auto call = QDBusMessage::createMethodCall("org.kde.KWin", "/KWin", "org.kde.KWin", "getWindowInfo");
    const auto reply = callAndServe(*bus_, call << QString::fromStdString(window.id()));
    return QDBusReply<QVariantMap>(reply).value();
}

struct KWinOutputs::Listeners {
    static void named(void* data, kde_output_device_v2* device, const char* name) {
        static_cast<KWinOutputs*>(data)->devices_[name] = device;
    }

    static constexpr kde_output_device_v2_listener device = {
        .geometry = [](void*, kde_output_device_v2*, int, int, int, int, int, const char*, const char*,
                       int) {},
        .current_mode = [](void*, kde_output_device_v2*, kde_output_device_mode_v2*) {},
        .mode = [](void*, kde_output_device_v2*,
                   kde_output_device_mode_v2* mode) { kde_output_device_mode_v2_destroy(mode); },
        .done = [](void*, kde_output_device_v2*) {},
        .scale = [](void*, kde_output_device_v2*, wl_fixed_t) {},
        .edid = [](void*, kde_output_device_v2*, const char*) {},
        .enabled = [](void*, kde_output_device_v2*, int) {},
        .uuid = [](void*, kde_output_device_v2*, const char*) {},
        .serial_number = [](void*, kde_output_device_v2*, const char*) {},
        .eisa_id = [](void*, kde_output_device_v2*, const char*) {},
        .capabilities = [](void*, kde_output_device_v2*, std::uint32_t) {},
        .overscan = [](void*, kde_output_device_v2*, std::uint32_t) {},
        .vrr_policy = [](void*, kde_output_device_v2*, std::uint32_t) {},
        .rgb_range = [](void*, kde_output_device_v2*, std::uint32_t) {},
        .name = named,
    };

    static void applied(void* data, kde_output_configuration_v2*) { *static_cast<int*>(data) = 1; }
    static void failed(void* data, kde_output_configuration_v2*) { *static_cast<int*>(data) = -1; }
    static constexpr kde_output_configuration_v2_listener configuration = {.applied = applied,
                                                                           .failed = failed};
};

KWinOutputs::KWinOutputs(WaylandConnection& connection, QString systemRoot)
    : connection_(connection), systemRoot_(std::move(systemRoot)), outputs_(connection) {
    watches_.push_back(
        connection.watchGlobals("kde_output_device_v2", [this](const WaylandConnection::Global& global) {
            auto* device = static_cast<kde_output_device_v2*>(
                connection_.bind(global, kde_output_device_v2_interface, 2));
            kde_output_device_v2_add_listener(device, &Listeners::device, this);
            all_.push_back(device);
        }));
    watches_.push_back(
        connection.watchGlobals("kde_output_management_v2", [this](const WaylandConnection::Global& global) {
            management_ = static_cast<kde_output_management_v2*>(
                connection_.bind(global, kde_output_management_v2_interface, 2));
        }));
    connection.roundTrip(Seconds(5));
}

KWinOutputs::~KWinOutputs() {
    for (auto* device : all_)
        kde_output_device_v2_destroy(device);
    if (management_)
        kde_output_management_v2_destroy(management_);
}

bool KWinOutputs::configure(
    int output, const std::function<void(kde_output_configuration_v2*, kde_output_device_v2*)>& change) {
    const auto device = devices_.find(name(output));
    if (device == devices_.end() || !management_)
        return false;
    auto* configuration = kde_output_management_v2_create_configuration(management_);
    int outcome = 0;
    kde_output_configuration_v2_add_listener(configuration, &Listeners::configuration, &outcome);
    change(configuration, device->second);
    kde_output_configuration_v2_apply(configuration);
    connection_.flush();
    waitUntil([&] { return outcome != 0; });
    kde_output_configuration_v2_destroy(configuration);
    connection_.flush();
    return outcome > 0;
}

bool KWinOutputs::plug(int output, const Rect& area, const std::optional<MonitorIdentity>& identity) {
    identifyOutput(systemRoot_, QString::fromStdString(name(output)), identity);
    return configure(output,
                     [&](auto* configuration, auto* device) {
                         kde_output_configuration_v2_enable(configuration, device, 1);
                         kde_output_configuration_v2_position(configuration, device, int(area.x),
                                                              int(area.y));
                     }) &&
           waitUntil([&] { return std::ranges::count(areas(), area) == 1; });
}

bool KWinOutputs::unplug(int output) {
    const auto count = areas().size();
    return configure(output,
                     [](auto* configuration, auto* device) {
                         kde_output_configuration_v2_enable(configuration, device, 0);
                     }) &&
           waitUntil([&] { return areas().size() == count - 1; });
}

std::vector<Rect> KWinOutputs::areas() {
    std::vector<Rect> areas;
    for (const auto& output : outputs_.outputs())
        areas.push_back(output.frame);
    return areas;
}

std::vector<ListedWindows::Listed> KWinWindows::list() {
    const auto told = kwin_.ask({{"operation", "list"}});
    std::vector<Listed> windows;
    for (const QJsonValue window : told["windows"].toArray())
        windows.push_back({.id = window["id"].toString().toStdString(),
                           .title = window["title"].toString().toStdString(),
                           .pid = window["pid"].toInteger(),
                           .frame = rectOf(window["frame"]),
                           .isVisible = window["visible"].toBool(),
                           .isFocused = window["id"] == told["active"]});
    return windows;
}

void KWinWindows::tell(const WindowHandle& window, const Rect& frame) {
    kwin_.ask({{"operation", "place"},
               {"patience", 3000},
               {"windows", QJsonArray{QJsonObject{
                               {"id", QString::fromStdString(window.id())},
                               {"frame", QJsonArray{frame.x, frame.y, frame.width, frame.height}}}}}});
}

bool KWinWindows::place(const WindowHandle& window, const Rect& frame) {
    // KWin places a new window once more when it has its first content.
    return waitUntil([&] {
        tell(window, frame);
        return isNear(visibleFrame(window).value_or(Rect{}), frame);
    });
}

void KWinWindows::activate(const WindowHandle& window) {
    kwin_.ask({{"operation", "activate"}, {"id", QString::fromStdString(window.id())}});
}

void KWinWindows::invoke(const WindowHandle& window, const QString& shortcut) {
    activate(window);
    waitUntil([&] {
        const auto found = listed(window);
        return found && found->isFocused;
    });
    kwin_.invoke(shortcut);
}

bool KWinWindows::maximise(const WindowHandle& window) {
    invoke(window, "Window Maximize");
    return waitUntil([&] { return kwin_.facts(window)["maximizeHorizontal"].toInt() != 0; });
}

bool KWinWindows::unmaximise(const WindowHandle& window) {
    invoke(window, "Window Maximize");
    return waitUntil([&] { return kwin_.facts(window)["maximizeHorizontal"].toInt() == 0; });
}

bool KWinWindows::makeFullscreen(const WindowHandle& window) {
    const auto before = visibleFrame(window);
    invoke(window, "Window Fullscreen");
    return waitUntil([&] { return isFullscreen(window) && visibleFrame(window) != before; });
}

bool KWinWindows::tileLeft(const WindowHandle& window) {
    const auto before = visibleFrame(window);
    invoke(window, "Window Quick Tile Left");
    return waitUntil([&] { return visibleFrame(window) != before; });
}

void KWinWindows::close(const WindowHandle& window) {
    invoke(window, "Window Close");
}

KWinKeyboard::KWinKeyboard(WaylandConnection& connection) : PlayedKeyboard(connection) {
    watch_ =
        connection.watchGlobals("org_kde_kwin_fake_input", [this](const WaylandConnection::Global& global) {
            input_ = static_cast<org_kde_kwin_fake_input*>(
                connection_.bind(global, org_kde_kwin_fake_input_interface, 4));
            org_kde_kwin_fake_input_authenticate(input_, "tests", "to type");
        });
    connection.roundTrip(Seconds(5));
}

KWinKeyboard::~KWinKeyboard() {
    if (input_)
        org_kde_kwin_fake_input_destroy(input_);
}

void KWinKeyboard::change(std::uint32_t position, Change change) {
    if (input_)
        org_kde_kwin_fake_input_keyboard_key(input_, position, change == Change::down ? 1 : 0);
}

KWinDesktop::KWinDesktop(const Options& options)
    : Desktop(options), size_(options.displays.front()),
      outputCount_(static_cast<int>(options.displays.size())) {
    // KWin tells the harness of no move: whoever waits for one looks again at every beat.
    heartbeat_.start(20);
    QDir().mkpath(scratch_.filePath("sys/class/drm"));
    prepareWaylandSession("KDE");
    start();
    for (int index = 0; index < outputCount_; ++index)
        require(outputs_->plug(index, options.displays[static_cast<std::size_t>(index)],
                               MonitorIdentity{.serial = static_cast<std::uint32_t>(index + 1)}),
                "displays");
}

void KWinDesktop::start() {
    keyboard_.reset();
    outputs_.reset();
    connection_.reset();
    x_.reset();
    const auto runtime = environment_.value("XDG_RUNTIME_DIR");
    // The installed file carries a capability, which not every sandbox may give; a copy does without.
    const auto program = scratch_.filePath("kwin_wayland");
    if (!QFile::exists(program))
        require(QFile::copy(QStandardPaths::findExecutable("kwin_wayland"), program), "KWin");
    auto environment = environment_;
    environment.remove("DISPLAY");
    environment.remove("WAYLAND_DISPLAY");
    environment.insert("KWIN_COMPOSE", "Q");
    environment.insert("KWIN_WAYLAND_NO_PERMISSION_CHECKS", "1");
    const auto started = runtime + "/started";
    QFile::remove(started);
    require(kwin_.start(
                program,
                {"--virtual", "--width", QString::number(size_.width), "--height",
                 QString::number(size_.height), "--output-count", QString::number(outputCount_),
                 "--no-lockscreen", "--socket", "wayland-test", "--xwayland",
                 "sh -c \"echo $DISPLAY > " + started + ".part; mv " + started + ".part " + started + "\""},
                environment, log("kwin")),
            "KWin");
    QFile file(started);
    require(waitUntil([&] { return file.exists() || !kwin_.isRunning(); }) && file.open(QIODevice::ReadOnly),
            "KWin");
    environment_.insert("WAYLAND_DISPLAY", runtime + "/wayland-test");
    environment_.insert("DISPLAY", QString(file.readAll()).trimmed());
    auto connection = WaylandConnection::open(loop_, environment_.value("WAYLAND_DISPLAY").toStdString());
    require(connection.has_value(), "connection to KWin");
    connection_ = std::move(*connection);
    outputs_ = std::make_unique<KWinOutputs>(*connection_, scratch_.filePath("sys"));
    keyboard_ = std::make_unique<KWinKeyboard>(*connection_);
    talk_.open(sessionBus().connection(), runtime);
    x_ = std::make_unique<XConnection>(environment_.value("DISPLAY").toStdString());
    require(x_->isOpen(), "X connection");
}

} // namespace tavrin::desktop

#include "platform/x11_desktop.h"

#include "base/text.h"
#include "platform/freedesktop/bus_addresses.h"
#include "platform/freedesktop/freedesktop_application_catalog.h"
#include "platform/freedesktop/freedesktop_link_opener.h"
#include "platform/freedesktop/freedesktop_system_events.h"
#include "platform/freedesktop/session_bus_instances.h"
#include "platform/freedesktop/xdg_autostart_login_item.h"
#include "platform/freedesktop/xdg_paths.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_wall_clock.h"
#include "platform/qt/qt_application_host.h"
#include "platform/qt/qt_event_loop.h"
#include "platform/qt/qt_local_key_monitor.h"
#include "platform/qt/qt_program.h"
#include "platform/qt/qt_scheduler.h"
#include "platform/qt/qt_status_item.h"
#include "platform/qt/qt_user_defaults.h"
#include "platform/system_event_hub.h"
#include "platform/x11/x11_platform.h"
#include "ports/key_monitors.h"
#include "ports/session.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace tavrin {
namespace {

/// Presses for other applications from the X server, those for the program's own windows from Qt.
class DesktopKeyMonitors : public KeyMonitors {
public:
    DesktopKeyMonitors(std::unique_ptr<X11Platform>& x11, const QtApplicationHost& host)
        : x11_(x11), host_(host) {}

    Token addGlobalMonitor(std::function<void(const KeyEvent&)> handler) override {
        return x11_->addGlobalKeyMonitor([this, handler = std::move(handler)](const KeyEvent& event) {
            // The X server shows every press, whoever has the focus.
            if (!host_.isActive())
                handler(event);
        });
    }

    Token addLocalMonitor(std::function<bool(const KeyEvent&)> handler) override {
        return localMonitor_.add(std::move(handler));
    }

private:
    std::unique_ptr<X11Platform>& x11_;
    const QtApplicationHost& host_;
    QtLocalKeyMonitor localMonitor_{[this](std::uint32_t key) { return x11_->keyPosition(key); }};
};

/// What the session's environment, the X server and the toolkit say about themselves.
class X11DesktopInformation : public DesktopInformation {
public:
    explicit X11DesktopInformation(std::unique_ptr<X11Platform>& x11) : x11_(x11) {}

    DesktopFacts currentFacts() override {
        const auto variable = [](const char* name) {
            const char* value = std::getenv(name);
            return value ? sanitizedUtf8(value, 128) : std::string();
        };
        const std::string type = variable("XDG_SESSION_TYPE");
        return {.desktopName = variable("XDG_CURRENT_DESKTOP"),
                .windowManagerName = x11_->windowManagerName(),
                .sessionType = type.empty() ? "x11" : type,
                .toolkitVersion = QtProgram::toolkitVersion()};
    }

private:
    std::unique_ptr<X11Platform>& x11_;
};

/// The page about the permission, beside the program as it was installed or in the installed place.
std::filesystem::path helpPage(const std::filesystem::path& program) {
    const auto beside = program.parent_path().parent_path() / "share/doc/tavrin/permission.html";
    return std::filesystem::exists(beside) ? beside : std::filesystem::path(TAVRIN_HELP_PAGE);
}

class X11Desktop : public OpenedPlatform {
public:
    X11Desktop(int& argc, char** argv)
        : program_(argc, argv, TAVRIN_VERSION), host_(program_.application()) {}

    std::expected<void, std::string> open() {
        auto x11 = X11Platform::open({}, eventLoop_, scheduler_, catalog_);
        if (!x11)
            return std::unexpected(x11.error());
        x11_ = std::move(*x11);
        observers_.push_back(x11_->observeScreenParameters(emit(SystemEvent::screenParametersChanged)));
        observers_.push_back(x11_->observeWindowManager(emit(SystemEvent::trustMayHaveChanged)));
        observers_.push_back(x11_->observeConnectionLoss([this] {
            std::fprintf(stderr, "tavrin: the connection to the X server is lost\n");
            program_.exit(EXIT_FAILURE);
        }));
        observers_.push_back(host_.observeDidBecomeActive(emit(SystemEvent::didBecomeActive)));
        platform_.emplace(Platform{.screenList = x11_->screenList(),
                                   .windowList = x11_->rawWindowList(),
                                   .runningApplications = x11_->runningApplications(),
                                   .windowElements = x11_->windowElements(),
                                   .accessibilityTrust = x11_->accessibilityTrust(),
                                   .keyMonitors = keyMonitors_,
                                   .systemEvents = events_,
                                   .loginItem = loginItem_,
                                   .runningInstances = instances_,
                                   .userDefaults = defaults_,
                                   .fileSystem = fileSystem_,
                                   .clock = clock_,
                                   .scheduler = scheduler_,
                                   .statusItem = statusItem_,
                                   .applicationHost = host_,
                                   .linkOpener = links_,
                                   .applicationSupportDirectory = XdgPaths{}.dataHome(),
                                   .processIdentifier = getpid(),
                                   .applicationCatalog = catalog_,
                                   .desktopInformation = desktopInformation_});
        return {};
    }

    const Platform& platform() override { return *platform_; }
    std::optional<Rect> statusItemAnchor() override { return statusItem_.anchor(); }
    int run() override { return program_.run(); }

    void setOnActivate(std::function<void()> handler) override {
        if (!handler)
            return instances_.setOnActivate({});
        // An X11 window manager goes by the time of the request, not by a token.
        instances_.setOnActivate([handler = std::move(handler)](const std::string&) { handler(); });
    }

private:
    std::function<void()> emit(SystemEvent event) {
        return [this, event] { events_.emit(event); };
    }

    QtProgram program_;
    QtApplicationHost host_;
    QtEventLoop eventLoop_;
    QtScheduler scheduler_;
    SystemEventHub events_;
    FreedesktopApplicationCatalog catalog_;
    FreedesktopSystemEvents sessionEvents_{{}, [this](SystemEvent event) { events_.emit(event); }};
    QtUserDefaults defaults_;
    PosixFileSystem fileSystem_;
    SystemWallClock clock_;
    QtStatusItem statusItem_;
    XdgAutostartLoginItem loginItem_{fileSystem_, host_.bundlePath()};
    SessionBusInstances instances_{busAddresses().session, getpid()};
    FreedesktopLinkOpener links_{helpPage(host_.bundlePath()), busAddresses().session};
    std::unique_ptr<X11Platform> x11_;
    DesktopKeyMonitors keyMonitors_{x11_, host_};
    X11DesktopInformation desktopInformation_{x11_};
    std::vector<Token> observers_;
    std::optional<Platform> platform_;
};

} // namespace

std::expected<std::unique_ptr<OpenedPlatform>, std::string> openX11Desktop(int& argc, char** argv) {
    // Qt ends the process without a word to its caller when there is no server.
    if (const auto reachable = X11Platform::reach({}); !reachable)
        return std::unexpected(reachable.error());
    auto desktop = std::make_unique<X11Desktop>(argc, argv);
    if (const auto opened = desktop->open(); !opened)
        return std::unexpected(opened.error());
    return desktop;
}

} // namespace tavrin

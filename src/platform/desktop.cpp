#include "platform/desktop.h"

#include "base/text.h"
#include "platform/applications/environment.h"
#include "platform/applications/freedesktop_application_catalog.h"
#include "platform/desktop_texts.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_wall_clock.h"
#include "platform/qt/desktop_colors.h"
#include "platform/qt/qt_application_host.h"
#include "platform/qt/qt_link_opener.h"
#include "platform/qt/qt_local_key_monitor.h"
#include "platform/qt/qt_status_item.h"
#include "platform/qt/qt_user_defaults.h"
#include "platform/session_bus/autostart_login_item.h"
#include "platform/session_bus/display_instances.h"
#include "platform/session_bus/session_events.h"
#include "platform/system_event_hub.h"
#include "platform/windows/window_ports.h"
#include "platform/windows/window_system_elements.h"
#include "ports/key_monitors.h"
#include "ports/session.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <unistd.h>

namespace tavrin {
namespace {

/// Presses for other applications from the window system, those that reach the program's own windows from Qt.
class DesktopKeyMonitors final : public KeyMonitors {
public:
    DesktopKeyMonitors(WindowSystem& system, const QtApplicationHost& host, const SessionEvents& session)
        : system_(system), host_(host), session_(session) {}

    void watch(std::vector<KeyCombo> combos, std::function<void(const KeyEvent&)> pressed) override {
        system_.watchKeys(std::move(combos), [this, pressed = std::move(pressed)](const KeyCombo& combo) {
            // What this program's own windows get comes from Qt. A window system may show what is typed to
            // unlock the screen, too.
            if ((system_.reservesKeys() || !host_.isActive()) && !session_.isScreenLocked())
                pressed({.keyCode = combo.keyCode, .modifierFlags = combo.modifiers.rawValue});
        });
    }

    std::vector<RefusedKey> refusedKeys() override { return system_.refusedKeys(); }

    Token observeRefusedKeys(std::function<void()> handler) override {
        return system_.observe(WindowSystemEvent::refusedKeysChanged, std::move(handler));
    }

    Token addLocalMonitor(std::function<bool(const KeyEvent&)> handler) override {
        return localMonitor_.add(std::move(handler));
    }

private:
    WindowSystem& system_;
    const QtApplicationHost& host_;
    const SessionEvents& session_;
    QtLocalKeyMonitor localMonitor_{[this](std::uint32_t key) { return system_.keyPosition(key); }};
};

/// What the session's environment, the window system and the toolkit say about themselves.
class SessionInformation final : public DesktopInformation {
public:
    explicit SessionInformation(WindowSystem& system) : system_(system) {}

    DesktopFacts currentFacts() override {
        const auto variable = [](const char* name) {
            const char* value = std::getenv(name);
            return value ? sanitizedUtf8(value, 128) : std::string();
        };
        const std::string type = variable("XDG_SESSION_TYPE");
        return {.desktopName = variable("XDG_CURRENT_DESKTOP"),
                .windowManagerName = system_.name(),
                .sessionType = type.empty() ? QtProgram::windowProtocol() : type,
                .toolkitVersion = QtProgram::toolkitVersion(),
                .shortcutObstacle = system_.keyObstacle()};
    }

    DesktopTexts texts() override { return desktopTexts(system_.obstacle()); }

private:
    WindowSystem& system_;
};

/// The page about the permission, beside the program as it was installed or in the installed place.
std::filesystem::path helpPage(const std::filesystem::path& program) {
    const auto beside = program.parent_path().parent_path() / "share/doc/tavrin/permission.html";
    return std::filesystem::exists(beside) ? beside : std::filesystem::path(TAVRIN_HELP_PAGE);
}

/// The name in the environment of the display that the program is on.
std::string displayName() {
    return environmentVariable(QtProgram::windowProtocol() == "x11" ? "DISPLAY" : "WAYLAND_DISPLAY")
        .value_or("");
}

class Desktop final : public OpenedPlatform {
public:
    Desktop(std::unique_ptr<DesktopToolkit> toolkit, std::unique_ptr<WindowSystem> system)
        : toolkit_(std::move(toolkit)), system_(std::move(system)) {
        observers_.push_back(
            system_->observe(WindowSystemEvent::screensChanged, emit(SystemEvent::screenParametersChanged)));
        observers_.push_back(system_->observe(WindowSystemEvent::availabilityChanged, [this] {
            events_.emit(SystemEvent::trustMayHaveChanged);
            if (!trust_.isProcessTrusted())
                return;
            patience_.release();
            for (const auto event : std::exchange(held_, {}))
                events_.emit(event);
        }));
        observers_.push_back(system_->observe(WindowSystemEvent::connectionLost, [this] {
            std::fprintf(stderr, "tavrin: the connection to the window system is lost\n");
            toolkit_->program.exit(EXIT_FAILURE);
        }));
        if (QtProgram::windowProtocol() == "wayland")
            host_.setBringForward([this](const auto& window) { return bringForward(window); });
        observers_.push_back(host_.observeDidBecomeActive(emit(SystemEvent::didBecomeActive)));
        constexpr std::chrono::milliseconds patience{500};
        sessionBus_.open(patience);
        systemBus_.open();
    }

    const Platform& platform() override { return platform_; }
    std::optional<Rect> statusItemAnchor() override { return statusItem_.anchor(); }
    int run() override { return toolkit_->program.run(); }

    void setOnActivate(std::function<void()> handler) override {
        instances_.setOnActivate(std::move(handler));
    }

private:
    /// Through the window system, as with anybody's window.
    bool bringForward(const QtApplicationHost::OwnWindow& own) {
        const auto listing = system_->list();
        if (!listing)
            return true; // nothing more can be done
        const auto window = std::ranges::find_if(listing->windows, [&](const DesktopWindow& listed) {
            return listed.application.pid == getpid() && listed.title == own.title;
        });
        if (window == listing->windows.end())
            return false;
        if (own.isPopover && !window->isTiled)
            if (const auto frame = popoverFrame(window->frame))
                system_->place(std::vector{WindowPlacement{window->id, *frame}}, Seconds{0.5});
        system_->activate(window->id, {});
        return true;
    }

    /// Below the pointer, else in the corner beside the panel. Desktop space; absent without a screen.
    std::optional<Rect> popoverFrame(const Rect& now) {
        constexpr double gap = 8;
        const auto screens = system_->screens();
        const auto pointer = system_->pointer();
        const DesktopScreen* screen = nullptr;
        for (const auto& candidate : screens)
            if (pointer ? overlapArea(candidate.frame, {pointer->x, pointer->y, 1, 1}) > 0
                        : candidate.isPrimary)
                screen = &candidate;
        if (!screen)
            return std::nullopt;
        const auto& area = screen->workArea;
        const bool isPanelBelow = area.maxY() < screen->frame.maxY();
        const double left = pointer ? pointer->x - now.width / 2 : area.maxX();
        const double top = pointer ? pointer->y + gap : isPanelBelow ? area.maxY() : area.minY();
        const auto within = [](double value, double least, double most) {
            return std::max(least, std::min(value, most));
        };
        return Rect{std::round(within(left, area.minX() + gap, area.maxX() - now.width - gap)),
                    std::round(within(top, area.minY() + gap, area.maxY() - now.height - gap)), now.width,
                    now.height};
    }

    std::function<void()> emit(SystemEvent event) {
        return [this, event] { events_.emit(event); };
    }

    /// At login this program may run before the window manager, and while the screen is locked GNOME has
    /// no extensions: until windows can be moved the event is kept, for a while.
    void sessionEvent(SystemEvent event) {
        if (trust_.isProcessTrusted()) {
            events_.emit(event);
            return;
        }
        constexpr Seconds longest{60};
        held_.insert(event);
        patience_ = toolkit_->scheduler.after(longest, [this] {
            patience_.release();
            held_.clear();
        });
    }

    std::unique_ptr<DesktopToolkit> toolkit_;
    std::unique_ptr<WindowSystem> system_;
    QtApplicationHost host_{toolkit_->program.application()};
    SystemEventHub events_;
    FreedesktopApplicationCatalog catalog_;
    BusLink systemBus_{busAddresses().system};
    BusLink& sessionBus_ = toolkit_->sessionBus;
    SessionEvents sessionEvents_{systemBus_, sessionBus_, environmentVariable("XDG_SESSION_ID"),
                                 [this](SystemEvent event) { sessionEvent(event); }};
    QtUserDefaults defaults_;
    PosixFileSystem fileSystem_;
    SystemWallClock clock_;
    QtStatusItem statusItem_{sessionBus_};
    AutostartLoginItem loginItem_{fileSystem_, host_.bundlePath()};
    DisplayInstances instances_{sessionBus_, instanceLock(displayName()), getpid()};
    QtLinkOpener links_{helpPage(host_.bundlePath()), [this] { return catalog_.canOpenPages(); }};
    DesktopKeyMonitors keyMonitors_{*system_, host_, sessionEvents_};
    SessionInformation information_{*system_};
    DesktopColors colors_{sessionBus_};
    ListedWindows windows_{*system_, catalog_, toolkit_->scheduler};
    WindowSystemScreens screens_{windows_};
    WindowSystemWindowList windowList_{windows_};
    WindowSystemApplications applications_{windows_};
    WindowSystemElements elements_{windows_};
    WindowSystemTrust trust_{*system_};
    Platform platform_{.screenList = screens_,
                       .windowList = windowList_,
                       .runningApplications = applications_,
                       .windowElements = elements_,
                       .accessibilityTrust = trust_,
                       .keyMonitors = keyMonitors_,
                       .systemEvents = events_,
                       .loginItem = loginItem_,
                       .runningInstances = instances_,
                       .userDefaults = defaults_,
                       .fileSystem = fileSystem_,
                       .clock = clock_,
                       .scheduler = toolkit_->scheduler,
                       .statusItem = statusItem_,
                       .applicationHost = host_,
                       .linkOpener = links_,
                       .applicationSupportDirectory = QtProgram::dataFolder(),
                       .processIdentifier = getpid(),
                       .applicationCatalog = catalog_,
                       .desktopInformation = information_};
    std::vector<Token> observers_;
    std::set<SystemEvent> held_; ///< until windows can be moved
    Token patience_;             ///< of `held_`
};

} // namespace

DesktopToolkit::DesktopToolkit(int& argc, char** argv) : program(argc, argv, TAVRIN_VERSION) {}

std::unique_ptr<OpenedPlatform> makeDesktop(std::unique_ptr<DesktopToolkit> toolkit,
                                            std::unique_ptr<WindowSystem> system) {
    return std::make_unique<Desktop>(std::move(toolkit), std::move(system));
}

} // namespace tavrin

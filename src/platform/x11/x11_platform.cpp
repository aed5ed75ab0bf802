#include "platform/x11/x11_platform.h"

#include "platform/x11/x11_accessibility_trust.h"
#include "platform/x11/x11_desktop_watch.h"
#include "platform/x11/x11_key_monitor.h"
#include "platform/x11/x11_raw_window_list.h"
#include "platform/x11/x11_running_applications.h"
#include "platform/x11/x11_window_elements.h"

#include <cstdlib>
#include <string_view>
#include <utility>

namespace tavrin {
namespace {

bool isWaylandSession() {
    const char* display = std::getenv("WAYLAND_DISPLAY");
    const char* type = std::getenv("XDG_SESSION_TYPE");
    return (display && *display != '\0') || (type && std::string_view(type) == "wayland");
}

} // namespace

struct X11Platform::Rooms {
    Rooms(std::unique_ptr<X11Connection> questions, std::unique_ptr<X11Connection> news, EventLoop& eventLoop,
          Scheduler& scheduler, ApplicationCatalog& catalog)
        : query(std::move(questions), scheduler), events(std::move(news), eventLoop, scheduler),
          table(query, catalog), windowManager(query), mover(query, table, windowManager),
          screens(query.server(), windowManager), windows(table), applications(table),
          elements(table, windowManager, mover), trust(windowManager),
          desktopWatch(events, screens, windowManager), keyMonitor(events, query) {}

    X11QueryConnection query;
    X11EventConnection events;
    X11WindowTable table;
    X11WindowManager windowManager;
    X11WindowMover mover;
    X11ScreenList screens;
    X11RawWindowList windows;
    X11RunningApplications applications;
    X11WindowElements elements;
    X11AccessibilityTrust trust;
    X11DesktopWatch desktopWatch;
    X11KeyMonitor keyMonitor;
};

X11Platform::X11Platform(std::unique_ptr<Rooms> rooms) : rooms_(std::move(rooms)) {}
X11Platform::~X11Platform() = default;

std::expected<void, std::string> X11Platform::reach(const std::string& displayName) {
    if (const auto connection = X11Connection::open(displayName); !connection)
        return std::unexpected(connection.error());
    return {};
}

std::expected<std::unique_ptr<X11Platform>, std::string> X11Platform::open(const std::string& displayName,
                                                                           EventLoop& eventLoop,
                                                                           Scheduler& scheduler,
                                                                           ApplicationCatalog& catalog) {
    auto questions = X11Connection::open(displayName);
    if (!questions)
        return std::unexpected(questions.error());
    auto news = X11Connection::open(displayName);
    if (!news)
        return std::unexpected(news.error());
    auto rooms =
        std::make_unique<Rooms>(std::move(*questions), std::move(*news), eventLoop, scheduler, catalog);
    if (isWaylandSession())
        rooms->windowManager.setWaylandSession();
    return std::unique_ptr<X11Platform>(new X11Platform(std::move(rooms)));
}

ScreenList& X11Platform::screenList() {
    return rooms_->screens;
}
RawWindowList& X11Platform::rawWindowList() {
    return rooms_->windows;
}
RunningApplications& X11Platform::runningApplications() {
    return rooms_->applications;
}
WindowElements& X11Platform::windowElements() {
    return rooms_->elements;
}
AccessibilityTrust& X11Platform::accessibilityTrust() {
    return rooms_->trust;
}

Token X11Platform::addGlobalKeyMonitor(std::function<void(const KeyEvent&)> handler) {
    return rooms_->keyMonitor.addGlobalMonitor(std::move(handler));
}

std::optional<std::uint32_t> X11Platform::keyPosition(std::uint32_t key) {
    return std::in_range<std::uint8_t>(key) ? rooms_->keyMonitor.keyPosition(static_cast<std::uint8_t>(key))
                                            : std::nullopt;
}

Token X11Platform::observeScreenParameters(std::function<void()> handler) {
    return rooms_->desktopWatch.observeScreens(std::move(handler));
}

Token X11Platform::observeWindowManager(std::function<void()> handler) {
    return rooms_->desktopWatch.observeWindowManager(std::move(handler));
}

Token X11Platform::observeConnectionLoss(std::function<void()> handler) {
    return rooms_->events.observeLoss(std::move(handler));
}

std::string X11Platform::windowManagerName() {
    return rooms_->windowManager.facts(Freshness::now).name;
}

} // namespace tavrin

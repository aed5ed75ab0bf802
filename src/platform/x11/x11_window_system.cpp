#include "platform/x11/x11_window_system.h"

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_property.h"

#include <utility>

namespace tavrin {

X11WindowSystem::X11WindowSystem(std::unique_ptr<X11Connection> questions,
                                 std::unique_ptr<X11Connection> news, EventLoop& eventLoop,
                                 Scheduler& scheduler)
    : query_(std::move(questions), eventLoop, scheduler), events_(std::move(news), eventLoop, scheduler),
      table_(query_), windowManager_(query_), mover_(query_, table_, windowManager_),
      screens_(query_.server(), windowManager_), desktopWatch_(events_, screens_, windowManager_),
      keyWatch_(events_, query_) {}

std::expected<std::unique_ptr<X11WindowSystem>, std::string>
X11WindowSystem::open(const std::string& displayName, EventLoop& eventLoop, Scheduler& scheduler) {
    auto connection = X11Connection::open(displayName);
    if (!connection)
        return std::unexpected(connection.error());
    return open(std::move(*connection), eventLoop, scheduler);
}

std::expected<std::unique_ptr<X11WindowSystem>, std::string>
X11WindowSystem::open(std::unique_ptr<X11Connection> connection, EventLoop& eventLoop, Scheduler& scheduler) {
    auto news = connection->openAnother();
    if (!news)
        return std::unexpected(news.error());
    return std::unique_ptr<X11WindowSystem>(
        new X11WindowSystem(std::move(connection), std::move(*news), eventLoop, scheduler));
}

std::string X11WindowSystem::name() {
    return windowManager_.facts(Freshness::now).name;
}

std::optional<WindowSystemObstacle> X11WindowSystem::obstacle() {
    if (query_.server().extensions().isWaylandBridge)
        return WindowSystemObstacle::partialView;
    if (windowManager_.isControllable(Freshness::now))
        return std::nullopt;
    return query_.server().isBroken() ? WindowSystemObstacle::notAnswering
                                      : WindowSystemObstacle::noWindowManager;
}

std::expected<WindowListing, WindowSystemObstacle> X11WindowSystem::list() {
    if (const auto why = obstacle())
        return std::unexpected(*why);
    if (!table_.refreshPlaces())
        return std::unexpected(WindowSystemObstacle::notAnswering);
    WindowListing listing;
    listing.primaryScreen = screens_.primaryFrame();
    listing.windows.reserve(table_.windows().size());
    for (const auto* window : table_.windows())
        if (window->kind)
            listing.windows.push_back(desktopWindow(*window));
    if (auto* tiling = i3()) {
        const auto tiled = tiling->tiled();
        for (auto& window : listing.windows)
            window.isTiled = tiled.contains(static_cast<std::uint32_t>(window.id));
    }
    if (const auto* active = table_.activeWindow(); active && active->kind)
        listing.activeWindow = active->id;
    return listing;
}

DesktopWindow X11WindowSystem::desktopWindow(const X11Window& window) const {
    return {.id = window.id,
            .application = window.clues,
            .title = window.title,
            .frame = desktopSpaceRect(visibleRect(window.client, window.borders())),
            .isOnScreen = table_.isOnScreen(window),
            .kind = *window.kind};
}

std::vector<PlacementOutcome> X11WindowSystem::place(std::span<const WindowPlacement> placements,
                                                     Seconds patience) {
    if (obstacle())
        return std::vector(placements.size(), PlacementOutcome::refused);
    auto* tiling = i3();
    const auto tiled = tiling ? tiling->place(placements) : std::map<WindowID, PlacementOutcome>();
    if (tiled.empty())
        return mover_.place(placements, patience);
    std::vector<WindowPlacement> others;
    for (const auto& placement : placements)
        if (!tiled.contains(placement.window))
            others.push_back(placement);
    const auto moved = mover_.place(others, patience);
    std::vector<PlacementOutcome> outcomes;
    auto next = moved.begin();
    for (const auto& placement : placements) {
        const auto found = tiled.find(placement.window);
        outcomes.push_back(found == tiled.end() ? *next++ : found->second);
    }
    return outcomes;
}

// i3 says that it moved a tiled window, and does not. Its own protocol tells which these are.
I3TiledWindows* X11WindowSystem::i3() {
    if (windowManager_.facts().name != "i3") {
        i3_.reset();
        return nullptr;
    }
    // Another one after i3 has been restarted.
    constexpr std::string_view property = "I3_SOCKET_PATH";
    constexpr std::size_t pathLimit = 256;
    auto* c = query_.get();
    const auto atom =
        owned(xcb_intern_atom_reply(c, xcb_intern_atom(c, 1, property.size(), property.data()), nullptr));
    const auto path = owned(xcb_get_property_reply(
        c, requestProperty(c, query_.root(), atom ? atom->atom : xcb_atom_t{XCB_ATOM_NONE}, pathLimit),
        nullptr));
    auto socket = text(path.get(), pathLimit).value_or("");
    if (!i3_ || socket != i3Socket_)
        i3_ = std::make_unique<I3TiledWindows>(socket);
    i3Socket_ = std::move(socket);
    return i3_.get();
}

std::vector<DesktopScreen> X11WindowSystem::screens() {
    return screens_.screens();
}

void X11WindowSystem::watchKeys(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed) {
    keyWatch_.watch(std::move(combos), std::move(pressed));
}

std::vector<RefusedKey> X11WindowSystem::refusedKeys() {
    return keyWatch_.refusedKeys();
}

std::optional<std::uint32_t> X11WindowSystem::keyPosition(std::uint32_t nativeScanCode) {
    return std::in_range<std::uint8_t>(nativeScanCode)
               ? keyWatch_.keyPosition(static_cast<std::uint8_t>(nativeScanCode))
               : std::nullopt;
}

bool X11WindowSystem::activate(WindowID, const std::string&) {
    return false; // a window manager goes by the time of the request, which the toolkit knows
}

std::optional<Point> X11WindowSystem::pointer() {
    const auto reply =
        owned(xcb_query_pointer_reply(query_.get(), xcb_query_pointer(query_.get(), query_.root()), nullptr));
    if (!reply || reply->same_screen == 0)
        return std::nullopt;
    return Point{static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)};
}

Token X11WindowSystem::observe(WindowSystemEvent event, std::function<void()> handler) {
    switch (event) {
    case WindowSystemEvent::screensChanged:
        return desktopWatch_.observeScreens(std::move(handler));
    case WindowSystemEvent::availabilityChanged:
        return desktopWatch_.observeWindowManager(std::move(handler));
    case WindowSystemEvent::connectionLost:
        return events_.observeLoss(std::move(handler));
    case WindowSystemEvent::refusedKeysChanged:
        break; // they only change with what is watched
    }
    return {};
}

} // namespace tavrin

#include "platform/x11/x11_window_mover.h"

#include "platform/x11/x11_property.h"
#include "platform/x11/x11_reply.h"

#include <array>

namespace tavrin {
namespace {

using namespace std::chrono_literals;

constexpr auto usualPatience = 1000ms;
/// After a window manager gave no answer, until it gives one again: a layout has many windows.
constexpr auto shortPatience = 50ms;
/// How long a window may keep a state that it was told to leave.
constexpr auto statePatience = 250ms;
/// How long a client may take to draw its shadows again.
constexpr auto shadowPatience = 250ms;
/// The frame may change with the state of the window; what was computed with the old one is then redone.
constexpr int attemptLimit = 3;
constexpr std::uint16_t fenceLimit = 1024;

constexpr std::uint32_t sourcePager = 2;
constexpr std::uint32_t stateRemove = 0;

// The layout of a window's size hints.
constexpr std::size_t hintCount = 18;
constexpr std::uint32_t hasGravityFlag = 1 << 9;

} // namespace

X11WindowMover::X11WindowMover(X11QueryConnection& connection, X11WindowTable& table,
                               X11WindowManager& windowManager)
    : connection_(connection), table_(table), windowManager_(windowManager), patience_(usualPatience) {
    connection_.join(*this);
}

AXError X11WindowMover::setPosition(xcb_window_t window, const Point& position) {
    const auto x = pixels(position.x);
    const auto y = pixels(position.y);
    if (!x || !y)
        return AXError::illegalArgument;
    wish_ = Wish{window, position};
    return place(window, {.x = *x + table_.primary().x, .y = *y + table_.primary().y});
}

AXError X11WindowMover::setSize(xcb_window_t window, const Size& size) {
    Target target{.width = pixels(size.width), .height = pixels(size.height)};
    if (!target.width || !target.height || *target.width < 1 || *target.height < 1)
        return AXError::illegalArgument;
    if (wish_ && wish_->window == window) {
        target.x = *pixels(wish_->position.x) + table_.primary().x;
        target.y = *pixels(wish_->position.y) + table_.primary().y;
    }
    wish_.reset();
    return place(window, target);
}

PixelRect X11WindowMover::wantedClient(const X11Window& window, const Target& target) {
    const auto borders = window.borders();
    const auto visible = visibleRect(window.client, borders);
    return clientRect({target.x.value_or(visible.x), target.y.value_or(visible.y),
                       target.width.value_or(visible.width), target.height.value_or(visible.height)},
                      borders);
}

AXError X11WindowMover::place(xcb_window_t id, const Target& target) {
    const auto* pinned = table_.find(id);
    if (!pinned)
        return AXError::invalidUIElement;
    // A maximised window that is already where it should be stays maximised.
    if (wantedClient(*pinned, target) == pinned->client)
        return AXError::success;
    if (const auto error = leavePinnedStates(id); error != AXError::success)
        return error;
    const bool canMoveResize = windowManager_.facts().supports(connection_.atoms().netMoveresizeWindow);
    for (int attempt = 0; attempt < attemptLimit; ++attempt) {
        const auto* window = table_.find(id);
        if (!window)
            return AXError::invalidUIElement;
        const auto borders = window->borders();
        const auto client = wantedClient(*window, target);
        if (client == window->client)
            return AXError::success;
        if (canMoveResize)
            moveResize(*window, target, client);
        else
            configure(*window, target, client);
        const bool isAnswered = awaitAnswer(id);
        table_.markOutdated(id, WindowPart::geometry | WindowPart::decorations | WindowPart::shadows);
        table_.refresh(Freshness::recent);
        window = table_.find(id);
        if (!window)
            return AXError::invalidUIElement;
        if (!isAnswered)
            return client == window->client ? AXError::success : AXError::cannotComplete;
        if (window->borders() == borders)
            return AXError::success;
    }
    return AXError::success;
}

AXError X11WindowMover::leavePinnedStates(xcb_window_t id) {
    const auto* window = table_.find(id);
    if (!window)
        return AXError::invalidUIElement;
    if (!window->states.isPinned())
        return AXError::success;
    const auto shadows = window->shadows;
    removeStates(*window);
    const bool isAnswered = awaitAnswer(id);
    // Some set the state later than they answer, and some answer but keep it.
    const auto deadline = Clock::now() + statePatience;
    do {
        table_.refresh(Freshness::recent);
        window = table_.find(id);
        if (!window)
            return AXError::invalidUIElement;
    } while (window->states.isPinned() && connection_.waitForEvents(deadline));
    if (!isAnswered && window->states.isPinned())
        return AXError::cannotComplete;
    if (window->drawsOwnShadows && window->shadows == shadows)
        awaitShadows(id, shadows);
    return AXError::success;
}

void X11WindowMover::awaitShadows(xcb_window_t id, const FrameInsets& pinnedShadows) {
    const auto deadline = Clock::now() + shadowPatience;
    const X11Window* window = nullptr;
    do {
        table_.refresh(Freshness::recent);
        window = table_.find(id);
    } while (window && window->shadows == pinnedShadows && connection_.waitForEvents(deadline));
}

void X11WindowMover::moveResize(const X11Window& window, const Target& target, const PixelRect& client) {
    const auto flag = [](bool isSet, int bit) { return isSet ? 1U << bit : 0U; };
    const auto values = flag(target.x.has_value(), 8) | flag(target.y.has_value(), 9) |
                        flag(target.width.has_value(), 10) | flag(target.height.has_value(), 11);
    // The corner of the frame is asked for, not that of the client, because the frame may change with the
    // state of the window.
    const auto& decorations = window.borders().decorations;
    sendToWindowManager(window.id, connection_.atoms().netMoveresizeWindow,
                        {XCB_GRAVITY_NORTH_WEST | values | sourcePager << 12,
                         static_cast<std::uint32_t>(client.x - decorations.left),
                         static_cast<std::uint32_t>(client.y - decorations.top),
                         static_cast<std::uint32_t>(client.width),
                         static_cast<std::uint32_t>(client.height)});
}

void X11WindowMover::configure(const X11Window& window, const Target& target, const PixelRect& client) {
    const auto hints =
        cardinals(owned(xcb_get_property_reply(connection_.get(),
                                               requestProperty(connection_.get(), window.id,
                                                               XCB_ATOM_WM_NORMAL_HINTS, hintCount * 4),
                                               nullptr))
                      .get());
    const std::uint32_t gravity = hints.size() >= hintCount && (hints[0] & hasGravityFlag) != 0
                                      ? hints[hintCount - 1]
                                      : static_cast<std::uint32_t>(XCB_GRAVITY_NORTH_WEST);
    const auto request = configureRequestRect(client, window.borders().decorations, gravity);
    std::uint16_t mask = 0;
    std::vector<std::uint32_t> values;
    const auto add = [&](bool isWanted, std::uint16_t field, std::int32_t value) {
        if (!isWanted)
            return;
        mask |= field;
        values.push_back(static_cast<std::uint32_t>(value));
    };
    add(target.x.has_value(), XCB_CONFIG_WINDOW_X, request.x);
    add(target.y.has_value(), XCB_CONFIG_WINDOW_Y, request.y);
    add(target.width.has_value(), XCB_CONFIG_WINDOW_WIDTH, request.width);
    add(target.height.has_value(), XCB_CONFIG_WINDOW_HEIGHT, request.height);
    xcb_configure_window(connection_.get(), window.id, mask, values.data());
}

void X11WindowMover::removeStates(const X11Window& window) {
    const auto& atoms = connection_.atoms();
    const auto remove = [&](xcb_atom_t first, xcb_atom_t second) {
        sendToWindowManager(window.id, atoms.netWmState, {stateRemove, first, second, sourcePager, 0});
    };
    if (window.states.isFullscreen)
        remove(atoms.netWmStateFullscreen, XCB_ATOM_NONE);
    if (window.states.isMaximizedHorizontally || window.states.isMaximizedVertically)
        remove(atoms.netWmStateMaximizedHorz, atoms.netWmStateMaximizedVert);
    if (window.states.isShaded)
        remove(atoms.netWmStateShaded, XCB_ATOM_NONE);
}

bool X11WindowMover::awaitAnswer(xcb_window_t window) {
    const auto deadline = Clock::now() + patience_;
    requestFence();
    while (answeredFence_ != requestedFence_) {
        if (!connection_.waitForEvents(deadline)) {
            patience_ = shortPatience;
            return false;
        }
        if (!table_.find(window))
            return true;
    }
    patience_ = usualPatience;
    return true;
}

void X11WindowMover::requestFence() {
    if (fenceWindow_ == XCB_WINDOW_NONE) {
        fenceWindow_ = xcb_generate_id(connection_.get());
        const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_create_window(connection_.get(), XCB_COPY_FROM_PARENT, fenceWindow_, connection_.root(), -1, -1,
                          fenceLimit, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_EVENT_MASK, &mask);
    }
    // The width tells the answers apart, so that a late one is not taken for the next.
    requestedFence_ = static_cast<std::uint16_t>(requestedFence_ % (fenceLimit - 1) + 1);
    const std::uint32_t width = requestedFence_;
    xcb_configure_window(connection_.get(), fenceWindow_, XCB_CONFIG_WINDOW_WIDTH, &width);
}

void X11WindowMover::sendToWindowManager(xcb_window_t window, xcb_atom_t type,
                                         const std::array<std::uint32_t, 5>& values) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    std::ranges::copy(values, message.data.data32);
    xcb_send_event(connection_.get(), 0, connection_.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
}

void X11WindowMover::handleEvent(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != XCB_CONFIGURE_NOTIFY)
        return;
    const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
    if (change.window == fenceWindow_)
        answeredFence_ = change.width;
}

void X11WindowMover::forget() {
    wish_.reset();
    patience_ = usualPatience;
    if (fenceWindow_ != XCB_WINDOW_NONE)
        xcb_destroy_window(connection_.get(), fenceWindow_);
    fenceWindow_ = XCB_WINDOW_NONE;
}

} // namespace tavrin

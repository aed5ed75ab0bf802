#include "support/desktop/x_windows.h"

#include "support/desktop/wait.h"

#include <algorithm>
#include <cmath>

namespace tavrin::desktop {

namespace {

constexpr std::uint32_t northWestGravity = 1;
constexpr std::uint32_t sourceIsPager = 2;

/// Some window managers surround a window with an invisible border to drag at, or draw a shadow that is wider
/// below.
bool fillsEvenly(const Rect& visible, const Rect& outermost) {
    const double left = visible.x - outermost.x;
    const double right = outermost.x + outermost.width - visible.x - visible.width;
    const double bottom = outermost.y + outermost.height - visible.y - visible.height;
    return left >= 0 && left == right && left <= bottom && visible.y >= outermost.y;
}

} // namespace

void XWindows::follow(xcb_window_t window) {
    if (followed_.insert(window).second)
        x_.watch(window);
}

std::vector<xcb_window_t> XWindows::managed() {
    auto windows = x_.cardinals(x_.root(), "_NET_CLIENT_LIST_STACKING");
    // xfwm4 writes the stacking order only once something has been raised.
    for (const auto window : x_.cardinals(x_.root(), "_NET_CLIENT_LIST"))
        if (std::find(windows.begin(), windows.end(), window) == windows.end())
            windows.push_back(window);
    for (const auto window : windows)
        follow(window);
    return windows;
}

std::vector<xcb_window_t> XWindows::shown() {
    auto windows = managed();
    auto* c = x_.raw();
    const Reply<xcb_query_tree_reply_t> tree{xcb_query_tree_reply(c, xcb_query_tree(c, x_.root()), nullptr)};
    if (tree) {
        const auto* first = xcb_query_tree_children(tree.get());
        windows.insert(windows.end(), first, first + xcb_query_tree_children_length(tree.get()));
    }
    std::erase_if(windows, [this](xcb_window_t window) { return !isViewable(window); });
    return windows;
}

std::string XWindows::title(const WindowHandle& window) {
    auto text = x_.text(window, "_NET_WM_NAME");
    return text.empty() ? x_.text(window, "WM_NAME") : text;
}

std::optional<WindowHandle> XWindows::find(const std::string& wanted) {
    for (const auto window : managed())
        if (title(window) == wanted)
            return window;
    return std::nullopt;
}

std::optional<WindowHandle> XWindows::waitForTitle(const std::string& wanted) {
    std::optional<WindowHandle> found;
    waitUntil([&] { return (found = find(wanted)) && isViewable(*found); });
    return found;
}

std::optional<WindowHandle> XWindows::waitForOpened(std::uint32_t number, qint64, const std::string&) {
    return waitUntilManaged(number) ? std::optional<WindowHandle>(number) : std::nullopt;
}

std::optional<Rect> XWindows::areaOfProcess(qint64 pid) {
    for (const auto window : shown())
        if (processOf(window) == pid)
            return outermost(window);
    return std::nullopt;
}

bool XWindows::waitUntilManaged(xcb_window_t window) {
    // It is shown only after it has been put in its place.
    return waitUntil([&] {
        const auto windows = managed();
        return std::find(windows.begin(), windows.end(), window) != windows.end() && isViewable(window);
    });
}

std::uint32_t XWindows::processOf(xcb_window_t window) {
    const auto pid = x_.cardinals(window, "_NET_WM_PID");
    return pid.empty() ? 0 : pid.front();
}

std::array<std::uint32_t, 4> XWindows::frameExtents(xcb_window_t window) {
    std::array<std::uint32_t, 4> sides{};
    const auto values = x_.cardinals(window, "_NET_FRAME_EXTENTS");
    if (values.size() == sides.size())
        std::copy(values.begin(), values.end(), sides.begin());
    return sides;
}

std::array<std::uint32_t, 4> XWindows::shadows(xcb_window_t window) {
    std::array<std::uint32_t, 4> sides{};
    const auto values = x_.cardinals(window, "_GTK_FRAME_EXTENTS");
    if (values.size() == sides.size())
        std::copy(values.begin(), values.end(), sides.begin());
    return sides;
}

std::optional<Rect> XWindows::clientArea(xcb_window_t window) {
    auto* c = x_.raw();
    const auto geometryCookie = xcb_get_geometry(c, window);
    const auto originCookie = xcb_translate_coordinates(c, window, x_.root(), 0, 0);
    const Reply<xcb_get_geometry_reply_t> geometry{xcb_get_geometry_reply(c, geometryCookie, nullptr)};
    const Reply<xcb_translate_coordinates_reply_t> origin{
        xcb_translate_coordinates_reply(c, originCookie, nullptr)};
    if (!geometry || !origin)
        return std::nullopt;
    return Rect{double(origin->dst_x), double(origin->dst_y), double(geometry->width),
                double(geometry->height)};
}

std::optional<Rect> XWindows::visibleFrame(const WindowHandle& window) {
    const auto area = clientArea(window);
    if (!area)
        return std::nullopt;
    const auto [left, right, top, bottom] = frameExtents(window);
    const auto [shadowLeft, shadowRight, shadowTop, shadowBottom] = shadows(window);
    const double growLeft = double(left) - double(shadowLeft);
    const double growTop = double(top) - double(shadowTop);
    return Rect{area->x - growLeft, area->y - growTop,
                area->width + growLeft + double(right) - double(shadowRight),
                area->height + growTop + double(bottom) - double(shadowBottom)};
}

std::optional<Rect> XWindows::outermost(xcb_window_t window) {
    auto* c = x_.raw();
    while (true) {
        const Reply<xcb_query_tree_reply_t> tree{xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr)};
        if (!tree)
            return std::nullopt;
        if (tree->parent == x_.root() || tree->parent == XCB_NONE)
            break;
        window = tree->parent;
    }
    const Reply<xcb_get_geometry_reply_t> geometry{
        xcb_get_geometry_reply(c, xcb_get_geometry(c, window), nullptr)};
    if (!geometry)
        return std::nullopt;
    return Rect{double(geometry->x), double(geometry->y),
                double(geometry->width) + 2 * geometry->border_width,
                double(geometry->height) + 2 * geometry->border_width};
}

bool XWindows::isViewable(xcb_window_t window) {
    auto* c = x_.raw();
    const Reply<xcb_get_window_attributes_reply_t> attributes{
        xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, window), nullptr)};
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool XWindows::hasState(xcb_window_t window, const std::string& state) {
    const auto states = x_.cardinals(window, "_NET_WM_STATE");
    return std::find(states.begin(), states.end(), x_.atom(state)) != states.end();
}

bool XWindows::isMaximised(xcb_window_t window) {
    return hasState(window, "_NET_WM_STATE_MAXIMIZED_VERT") &&
           hasState(window, "_NET_WM_STATE_MAXIMIZED_HORZ");
}

bool XWindows::place(const WindowHandle& window, const Rect& frame) {
    follow(window);
    const auto now = visibleFrame(window);
    const auto area = clientArea(window);
    if (!now || !area)
        return false;
    const bool isResized = now->width != frame.width || now->height != frame.height;
    // The position is that of the outer corner of all that is drawn, the size is the client's own. (Static
    // gravity would be off by the border that xterm asks for and openbox leaves out.)
    const std::uint32_t parts = isResized ? 0xf00 : 0x300; // x, y, width, height
    const auto number = [](double value) {
        return static_cast<std::uint32_t>(static_cast<std::int32_t>(value));
    };
    const auto shadow = shadows(window);
    x_.askWindowManager(window, "_NET_MOVERESIZE_WINDOW",
                        {northWestGravity | parts | sourceIsPager << 12, number(frame.x - shadow[0]),
                         number(frame.y - shadow[2]), number(frame.width + area->width - now->width),
                         number(frame.height + area->height - now->height)});
    // Terminals take the nearest whole step.
    const auto hints = x_.cardinals(window, "WM_NORMAL_HINTS");
    const bool hasSteps = hints.size() > 10 && (hints[0] & 1U << 6);
    const double stepWidth = hasSteps ? std::max(hints[9], 1U) : 1;
    const double stepHeight = hasSteps ? std::max(hints[10], 1U) : 1;
    return waitUntil([&] {
        const auto seen = visibleFrame(window);
        return seen && seen->x == frame.x && seen->y == frame.y &&
               std::abs(seen->width - frame.width) < stepWidth &&
               std::abs(seen->height - frame.height) < stepHeight;
    });
}

bool XWindows::makeFullscreen(const WindowHandle& window) {
    follow(window);
    const auto before = visibleFrame(window);
    x_.askWindowManager(window, "_NET_WM_STATE",
                        {1, x_.atom("_NET_WM_STATE_FULLSCREEN"), 0, sourceIsPager, 0});
    return waitUntil([&] { return isFullscreen(window) && visibleFrame(window) != before; });
}

bool XWindows::changeMaximised(xcb_window_t window, bool isWanted) {
    follow(window);
    const auto before = visibleFrame(window);
    x_.askWindowManager(window, "_NET_WM_STATE",
                        {isWanted ? 1U : 0U, x_.atom("_NET_WM_STATE_MAXIMIZED_VERT"),
                         x_.atom("_NET_WM_STATE_MAXIMIZED_HORZ"), sourceIsPager, 0});
    // The borders change with the state, in steps: done is when what is told agrees with what is there.
    return waitUntil([&] {
        const auto now = visibleFrame(window);
        const auto outer = outermost(window);
        return isMaximised(window) == isWanted && now != before && now && outer && fillsEvenly(*now, *outer);
    });
}

void XWindows::tell(const WindowHandle& window, const Rect& frame) {
    const auto number = [](double value) { return static_cast<std::uint32_t>(value); };
    constexpr std::uint32_t allParts = 0xf00;
    x_.askWindowManager(window, "_NET_MOVERESIZE_WINDOW",
                        {northWestGravity | allParts | sourceIsPager << 12, number(frame.x), number(frame.y),
                         number(frame.width), number(frame.height)});
}

void XWindows::close(const WindowHandle& window) {
    x_.askWindowManager(window, "_NET_CLOSE_WINDOW", {});
}

void XWindows::activate(const WindowHandle& window) {
    x_.askWindowManager(window, "_NET_ACTIVE_WINDOW", {sourceIsPager, XCB_CURRENT_TIME, 0, 0, 0});
}

void XWindows::minimise(xcb_window_t window) {
    constexpr std::uint32_t iconicState = 3;
    x_.askWindowManager(window, "WM_CHANGE_STATE", {iconicState, 0, 0, 0, 0});
}

void XWindows::shade(xcb_window_t window) {
    x_.askWindowManager(window, "_NET_WM_STATE", {1, x_.atom("_NET_WM_STATE_SHADED"), 0, sourceIsPager, 0});
}

bool XWindows::sendToDesktop(xcb_window_t window, std::uint32_t desktop) {
    follow(window);
    x_.askWindowManager(x_.root(), "_NET_NUMBER_OF_DESKTOPS", {desktop + 1, 0, 0, 0, 0});
    x_.askWindowManager(window, "_NET_WM_DESKTOP", {desktop, sourceIsPager, 0, 0, 0});
    return waitUntil([&] { return x_.cardinals(window, "_NET_WM_DESKTOP") == std::vector{desktop}; });
}

void XWindows::ignore(const WindowHandle& window) {
    followed_.insert(window);
    x_.ignore(window);
}

bool XWindows::isFullscreen(const WindowHandle& window) {
    follow(window);
    return hasState(window, "_NET_WM_STATE_FULLSCREEN");
}

bool XWindows::show(xcb_window_t window) {
    follow(window);
    const auto current = x_.cardinals(x_.root(), "_NET_CURRENT_DESKTOP");
    if (!current.empty())
        x_.askWindowManager(window, "_NET_WM_DESKTOP", {current[0], sourceIsPager, 0, 0, 0});
    activate(window);
    return waitUntil([&] {
        return isViewable(window) && (current.empty() || x_.cardinals(window, "_NET_WM_DESKTOP") == current);
    });
}

qint64 XWindows::processWithKeyboard() {
    auto* c = x_.raw();
    const Reply<xcb_get_input_focus_reply_t> focus{
        xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)};
    if (!focus || focus->focus <= XCB_INPUT_FOCUS_POINTER_ROOT)
        return 0;
    for (xcb_window_t window = focus->focus; window != XCB_NONE && window != x_.root();) {
        if (const auto pid = processOf(window))
            return pid;
        const Reply<xcb_query_tree_reply_t> tree{xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr)};
        window = tree ? tree->parent : XCB_NONE;
    }
    return 0;
}

} // namespace tavrin::desktop

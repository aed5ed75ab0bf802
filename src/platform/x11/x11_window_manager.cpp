#include "platform/x11/x11_window_manager.h"

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_property.h"

namespace tavrin {
namespace {

constexpr std::size_t nameLimit = 128;
constexpr std::size_t supportedLimit = 2048 * 4;

} // namespace

X11WindowManager::X11WindowManager(X11QueryConnection& connection) : connection_(connection) {
    connection_.join(*this);
}

const WindowManagerFacts& X11WindowManager::facts(Freshness freshness) {
    if (!connection_.bringUpToDate(freshness))
        facts_ = {};
    else if (!isKnown_)
        read();
    return facts_;
}

bool X11WindowManager::isControllable(Freshness freshness) {
    if (connection_.server().extensions().isWaylandBridge)
        return false;
    const auto& known = facts(freshness);
    if (known.isRunning && known.supports(connection_.atoms().netClientListStacking)) {
        wasControllable_ = true;
        absentSince_.reset();
        return true;
    }
    if (!wasControllable_)
        return false;
    const auto now = X11QueryConnection::Clock::now();
    if (!absentSince_)
        absentSince_ = now;
    wasControllable_ = !connection_.server().isBroken() && now - *absentSince_ < absenceLimit;
    if (!wasControllable_)
        absentSince_.reset();
    return wasControllable_;
}

xcb_window_t X11WindowManager::checkWindow() {
    return facts(Freshness::now).isRunning ? checkWindow_ : xcb_window_t{XCB_WINDOW_NONE};
}

void X11WindowManager::read() {
    const auto& atoms = connection_.atoms();
    auto* server = connection_.get();
    const auto request = [&](xcb_window_t window, xcb_atom_t atom, std::size_t limit) {
        return requestProperty(server, window, atom, limit);
    };
    const auto collect = [&](xcb_get_property_cookie_t cookie) {
        return owned(xcb_get_property_reply(server, cookie, nullptr));
    };
    facts_ = {};
    isKnown_ = true;
    const auto checkCookie = request(connection_.root(), atoms.netSupportingWmCheck, 4);
    const auto supportedCookie = request(connection_.root(), atoms.netSupported, supportedLimit);
    const auto check = cardinal(collect(checkCookie).get());
    const auto supported = cardinals(collect(supportedCookie).get());
    // Any program can write the property. The root window is nobody's, and selecting events on it here would
    // end those that are selected already.
    checkWindow_ = check.value_or(XCB_WINDOW_NONE);
    if (checkWindow_ == connection_.root())
        checkWindow_ = XCB_WINDOW_NONE;
    if (checkWindow_ == XCB_WINDOW_NONE)
        return;

    // A window manager that died leaves the root's property behind; its window names itself only while it
    // lives.
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(server, checkWindow_, XCB_CW_EVENT_MASK, &mask);
    const auto selfCookie = request(checkWindow_, atoms.netSupportingWmCheck, 4);
    const auto nameCookie = request(checkWindow_, atoms.netWmName, nameLimit);
    const auto self = cardinal(collect(selfCookie).get());
    const auto name = text(collect(nameCookie).get(), nameLimit);
    if (self != checkWindow_)
        return;
    facts_.isRunning = true;
    facts_.name = name.value_or("");
    facts_.supported.insert(supported.begin(), supported.end());
}

void X11WindowManager::handleEvent(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7f;
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        const auto& atoms = connection_.atoms();
        if (change.window == checkWindow_ ||
            (change.window == connection_.root() &&
             (change.atom == atoms.netSupportingWmCheck || change.atom == atoms.netSupported)))
            isKnown_ = false;
    } else if (type == XCB_DESTROY_NOTIFY) {
        if (reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == checkWindow_)
            isKnown_ = false;
    }
}

void X11WindowManager::forget() {
    const std::uint32_t mask = XCB_EVENT_MASK_NO_EVENT;
    if (checkWindow_ != XCB_WINDOW_NONE)
        xcb_change_window_attributes(connection_.get(), checkWindow_, XCB_CW_EVENT_MASK, &mask);
    checkWindow_ = XCB_WINDOW_NONE;
    isKnown_ = false;
}

} // namespace tavrin

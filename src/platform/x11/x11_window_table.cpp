#include "platform/x11/x11_window_table.h"

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_property.h"

#include <algorithm>
#include <set>

namespace tavrin {
namespace {

/// Far more windows than any desktop holds; a longer list is cut.
constexpr std::size_t windowLimit = 4096;

constexpr std::uint32_t allDesktops = 0xFFFFFFFF;

/// A window that sends more events is no longer listened to but read again at every question.
constexpr int eventLimit = 512;

void selectWindowEvents(xcb_connection_t* connection, xcb_window_t window, std::uint32_t mask) {
    xcb_change_window_attributes(connection, window, XCB_CW_EVENT_MASK, &mask);
}

} // namespace

X11WindowTable::X11WindowTable(X11QueryConnection& connection)
    : connection_(connection), reader_(connection.server()) {
    connection_.join(*this);
}

bool X11WindowTable::refresh(Freshness freshness) {
    if (!connection_.bringUpToDate(freshness)) {
        entries_.clear();
        stacking_.clear();
        windows_.clear();
        return false;
    }
    if (isRootOutdated_) {
        readRoot();
        // What happened before the list was read came with it.
        connection_.bringUpToDate(Freshness::recent);
    }
    if (hasLoud_)
        for (auto& [id, entry] : entries_)
            if (entry.eventCount > eventLimit)
                markOutdated(entry, WindowPart::all);
    readOutdated();
    return hasWindowList_;
}

bool X11WindowTable::refreshPlaces() {
    isRootOutdated_ = true;
    for (auto& [id, entry] : entries_)
        markOutdated(entry, WindowPart::visibility | WindowPart::geometry);
    return refresh(Freshness::recent);
}

const X11Window* X11WindowTable::find(xcb_window_t window) const {
    const auto found = entries_.find(window);
    return found == entries_.end() ? nullptr : &found->second.window;
}

bool X11WindowTable::isOnScreen(const X11Window& window) const {
    const bool isOnDesktop = !window.desktop || !shownDesktop_ || *window.desktop == *shownDesktop_ ||
                             *window.desktop == allDesktops;
    // Some window managers keep a shaded window's contents mapped, some do not; some call it hidden.
    return window.isViewable && !window.states.isHidden && !window.states.isShaded && isOnDesktop;
}

void X11WindowTable::markOutdated(xcb_window_t window, WindowPart parts) {
    if (const auto found = entries_.find(window); found != entries_.end())
        markOutdated(found->second, parts);
}

void X11WindowTable::markOutdated(Entry& entry, WindowPart parts) {
    entry.outdated = entry.outdated | parts;
    hasOutdated_ = true;
}

void X11WindowTable::readRoot() {
    const auto& atoms = connection_.atoms();
    auto* server = connection_.get();
    const auto collect = [&](xcb_get_property_cookie_t cookie) {
        return owned(xcb_get_property_reply(server, cookie, nullptr));
    };
    // From here on a change counts as news again, even one that happens before the answers come.
    isRootOutdated_ = false;
    const auto list =
        requestProperty(server, connection_.root(), atoms.netClientListStacking, windowLimit * 4);
    const auto desktop = requestProperty(server, connection_.root(), atoms.netCurrentDesktop, 4);
    const auto active = requestProperty(server, connection_.root(), atoms.netActiveWindow, 4);
    const auto announced = requestProperty(server, connection_.root(), atoms.netSupportingWmCheck, 4);
    const auto compositor = xcb_get_selection_owner(server, connection_.server().compositorSelection());
    const auto listReply = collect(list);
    hasWindowList_ = listReply && listReply->format == 32;
    takeWindowList(cardinals(listReply.get()));
    shownDesktop_ = cardinal(collect(desktop).get());
    // Only a window manager that composites by itself keeps the windows of other desktops mapped (for their
    // thumbnails). Under the others, mapped is shown, and each monitor may show a desktop of its own.
    const auto windowManager = cardinal(collect(announced).get()).value_or(XCB_WINDOW_NONE);
    const auto owner = owned(xcb_get_selection_owner_reply(server, compositor, nullptr));
    const auto clientOf = [this](xcb_window_t window) { return connection_.server().clientOf(window); };
    if (!owner || owner->owner == XCB_WINDOW_NONE || clientOf(owner->owner) != clientOf(windowManager))
        shownDesktop_.reset();
    hasOutdated_ |= shownDesktop_.has_value(); // the windows' desktops may not have been read before
    activeWindow_ = cardinal(collect(active).get());
}

void X11WindowTable::takeWindowList(const std::vector<std::uint32_t>& bottomToTop) {
    for (auto& [id, entry] : entries_)
        entry.isListed = false;
    stacking_.clear();
    for (auto id = bottomToTop.rbegin(); id != bottomToTop.rend(); ++id) {
        auto [found, isNew] = entries_.try_emplace(*id);
        auto& entry = found->second;
        if (entry.isListed)
            continue;
        entry.isListed = true;
        stacking_.push_back(*id);
        if (isNew) {
            entry.window.id = *id;
            markOutdated(entry, WindowPart::all);
            // Selected before anything is read, so that no change falls between.
            selectWindowEvents(connection_.get(), *id,
                               XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        }
    }
    for (auto entry = entries_.begin(); entry != entries_.end();) {
        if (entry->second.isListed) {
            ++entry;
            continue;
        }
        selectWindowEvents(connection_.get(), entry->first, XCB_EVENT_MASK_NO_EVENT);
        entry = entries_.erase(entry);
    }
    rebuildList();
}

void X11WindowTable::readOutdated() {
    if (!hasOutdated_)
        return;
    hasOutdated_ = false;
    const auto unneeded = shownDesktop_ ? WindowPart::none : WindowPart::desktop;
    std::vector<X11WindowReader::Task> tasks;
    for (auto& [id, entry] : entries_) {
        const auto parts = without(entry.outdated, unneeded);
        if (parts == WindowPart::none)
            continue;
        tasks.push_back({.window = &entry.window, .parts = parts});
        entry.outdated = without(entry.outdated, parts);
    }
    reader_.read(tasks);
    std::set<xcb_window_t> gone;
    for (const auto& task : tasks)
        if (task.isGone)
            gone.insert(task.window->id);
    if (gone.empty())
        return;
    for (const auto id : gone)
        entries_.erase(id);
    rebuildList();
}

void X11WindowTable::rebuildList() {
    std::erase_if(stacking_, [this](xcb_window_t id) { return !entries_.contains(id); });
    windows_.clear();
    for (const auto id : stacking_)
        windows_.push_back(&entries_.at(id).window);
}

void X11WindowTable::handleRootProperty(xcb_atom_t property) {
    const auto& atoms = connection_.atoms();
    if (property == atoms.netClientListStacking || property == atoms.netActiveWindow) {
        isRootOutdated_ = true;
    } else if (property == atoms.netCurrentDesktop) {
        isRootOutdated_ = true;
        for (auto& [id, entry] : entries_)
            markOutdated(entry, WindowPart::visibility);
    }
}

/// The entry of a window that sent an event; null when it is not listed.
X11WindowTable::Entry* X11WindowTable::senderOf(xcb_window_t window) {
    const auto found = entries_.find(window);
    if (found == entries_.end())
        return nullptr;
    if (++found->second.eventCount == eventLimit + 1) {
        selectWindowEvents(connection_.get(), window, XCB_EVENT_MASK_NO_EVENT);
        hasLoud_ = true;
    }
    return &found->second;
}

void X11WindowTable::handleEvent(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7f;
    const auto changed = [this](xcb_window_t window, WindowPart parts) {
        if (auto* entry = senderOf(window))
            markOutdated(*entry, parts);
    };
    switch (type) {
    case XCB_PROPERTY_NOTIFY: {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.window == connection_.root())
            handleRootProperty(change.atom);
        else
            changed(change.window, reader_.partOf(change.atom));
        return;
    }
    case XCB_CONFIGURE_NOTIFY: {
        changed(reinterpret_cast<const xcb_configure_notify_event_t&>(event).window, WindowPart::geometry);
        return;
    }
    case XCB_REPARENT_NOTIFY:
        changed(reinterpret_cast<const xcb_reparent_notify_event_t&>(event).window,
                WindowPart::geometry | WindowPart::visibility);
        return;
    case XCB_MAP_NOTIFY:
        changed(reinterpret_cast<const xcb_map_notify_event_t&>(event).window, WindowPart::visibility);
        return;
    case XCB_UNMAP_NOTIFY:
        changed(reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window, WindowPart::visibility);
        return;
    case XCB_DESTROY_NOTIFY:
        if (entries_.erase(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window) > 0)
            rebuildList();
        return;
    default:
        return;
    }
}

void X11WindowTable::forget() {
    for (const auto& [id, entry] : entries_)
        selectWindowEvents(connection_.get(), id, XCB_EVENT_MASK_NO_EVENT);
    entries_.clear();
    stacking_.clear();
    windows_.clear();
    hasWindowList_ = false;
    isRootOutdated_ = true;
    hasLoud_ = false;
}

} // namespace tavrin

#include "platform/x11/x11_query_connection.h"

#include "platform/x11/x11_reply.h"

#include <xcb/randr.h>

#include <algorithm>
#include <poll.h>

namespace tavrin {
namespace {

using namespace std::chrono_literals;

constexpr auto recentAge = 2ms;
/// A flood of events goes on as long as they are read; whoever waits must get its turn.
constexpr int eventsAtOnce = 4096;

void selectRootEvents(X11Connection& server, std::uint32_t coreMask, std::uint16_t randrMask) {
    xcb_change_window_attributes(server.get(), server.root(), XCB_CW_EVENT_MASK, &coreMask);
    if (server.extensions().hasMonitors)
        xcb_randr_select_input(server.get(), server.root(), randrMask);
}

} // namespace

X11QueryConnection::X11QueryConnection(std::unique_ptr<X11Connection> connection, Scheduler& scheduler)
    : connection_(std::move(connection)), scheduler_(scheduler) {}

bool X11QueryConnection::bringUpToDate(Freshness freshness) {
    beginUse();
    if (freshness == Freshness::now || Clock::now() - lastRoundTrip_ > recentAge) {
        // Any reply will do: the server has sent all earlier events before it.
        const auto reply = owned(xcb_get_input_focus_reply(get(), xcb_get_input_focus(get()), nullptr));
        lastRoundTrip_ = Clock::now();
    }
    // Asking the kernel for more each time would be most of the price of a question.
    dispatchEvents(xcb_poll_for_queued_event);
    return !connection_->isBroken();
}

bool X11QueryConnection::waitForEvents(Clock::time_point deadline) {
    xcb_flush(get());
    while (!dispatchEvents(xcb_poll_for_event) || Clock::now() >= deadline) {
        if (connection_->isBroken())
            return false;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left <= 0ms)
            return false;
        pollfd descriptor{.fd = connection_->fileDescriptor(), .events = POLLIN, .revents = 0};
        poll(&descriptor, 1, static_cast<int>(left.count()));
    }
    return true;
}

bool X11QueryConnection::dispatchEvents(EventSource next) {
    bool hadEvents = false;
    for (int count = 0; count < eventsAtOnce; ++count) {
        const auto event = owned(next(get()));
        if (!event)
            break;
        if (event->response_type == 0)
            continue; // the error of a request about a window that vanished
        hadEvents = true;
        for (auto* mirror : mirrors_)
            mirror->handleEvent(*event);
    }
    return hadEvents;
}

void X11QueryConnection::beginUse() {
    if (isInUse_)
        return;
    isInUse_ = true;
    lastRoundTrip_ = {};
    selectRootEvents(*connection_, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                     XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                         XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    endOfTurn_ = scheduler_.after(Seconds{0}, [this] { endUse(); });
}

void X11QueryConnection::endUse() {
    isInUse_ = false;
    selectRootEvents(*connection_, XCB_EVENT_MASK_NO_EVENT, 0);
    for (auto* mirror : mirrors_)
        mirror->forget();
    // What the server sent before it read this is read away now; nothing follows.
    const auto reply = owned(xcb_get_input_focus_reply(get(), xcb_get_input_focus(get()), nullptr));
    while (const auto event = owned(xcb_poll_for_queued_event(get()))) {
    }
}

} // namespace tavrin

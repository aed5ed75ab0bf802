#include "platform/x11/x11_query_connection.h"

#include <algorithm>
#include <poll.h>

namespace tavrin {
namespace {

using namespace std::chrono_literals;

constexpr auto recentAge = 2ms;
/// A flood of events can last as long as they are read; the callers must get their turn.
constexpr int eventsAtOnce = 4096;
/// A person who uses the program asks again within this time.
constexpr Seconds idleTime{5};
/// Reading more events than these costs more than reading everything anew at the next question.
constexpr int unaskedEventLimit = 4096;

void selectRootEvents(X11Connection& server, std::uint32_t mask) {
    xcb_change_window_attributes(server.get(), server.root(), XCB_CW_EVENT_MASK, &mask);
}

} // namespace

X11QueryConnection::X11QueryConnection(std::unique_ptr<X11Connection> connection, EventLoop& eventLoop,
                                       Scheduler& scheduler)
    : connection_(std::move(connection)), eventLoop_(eventLoop), scheduler_(scheduler) {}

bool X11QueryConnection::bringUpToDate(Freshness freshness) {
    // At the beginning nothing is known that could be out of date.
    if (isInUse_ && (freshness == Freshness::now || Clock::now() - lastRoundTrip_ > recentAge)) {
        // Any reply will do: the server sends all earlier events before it.
        const auto reply = owned(xcb_get_input_focus_reply(get(), xcb_get_input_focus(get()), nullptr));
        lastRoundTrip_ = Clock::now();
    }
    beginUse();
    // Asking the kernel for more each time would be most of the price of a question.
    dispatchEvents(xcb_poll_for_queued_event);
    return !connection_->isBroken();
}

bool X11QueryConnection::waitForEvents(Clock::time_point deadline) {
    xcb_flush(get());
    while (dispatchEvents(xcb_poll_for_event) == 0 || Clock::now() >= deadline) {
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

/// How many there were.
int X11QueryConnection::dispatchEvents(EventSource next) {
    int count = 0;
    for (int read = 0; read < eventsAtOnce; ++read) {
        const auto event = owned(next(get()));
        if (!event)
            break;
        if (event->response_type == 0)
            continue; // the error of a request about a window that vanished
        ++count;
        for (auto* mirror : mirrors_)
            mirror->handleEvent(*event);
    }
    return count;
}

void X11QueryConnection::beginUse() {
    lastUse_ = Clock::now();
    unaskedEvents_ = 0;
    if (isInUse_ || connection_->isBroken())
        return;
    isInUse_ = true;
    lastRoundTrip_ = lastUse_;
    selectRootEvents(*connection_, XCB_EVENT_MASK_PROPERTY_CHANGE);
    watch_ = eventLoop_.watchReadable(connection_->fileDescriptor(), [this] { readBetweenQuestions(); });
    idleTimer_ = scheduler_.after(idleTime, [this] { endUseWhenIdle(); });
}

void X11QueryConnection::readBetweenQuestions() {
    unaskedEvents_ += dispatchEvents(xcb_poll_for_event);
    if (unaskedEvents_ > unaskedEventLimit || connection_->isBroken())
        endUse();
    else
        xcb_flush(get()); // a mirror may have had enough of a window
}

void X11QueryConnection::endUseWhenIdle() {
    const Seconds idle = Clock::now() - lastUse_;
    if (idle >= idleTime)
        endUse();
    else // one timer for the whole time of use is cheaper than a new one at every question
        idleTimer_ = scheduler_.after(idleTime - idle, [this] { endUseWhenIdle(); });
}

void X11QueryConnection::endUse() {
    isInUse_ = false;
    watch_.release();
    idleTimer_.release();
    selectRootEvents(*connection_, XCB_EVENT_MASK_NO_EVENT);
    for (auto* mirror : mirrors_)
        mirror->forget();
    // Discard what the server sent before it read this; nothing follows.
    const auto reply = owned(xcb_get_input_focus_reply(get(), xcb_get_input_focus(get()), nullptr));
    while (const auto event = owned(xcb_poll_for_queued_event(get()))) {
    }
}

} // namespace tavrin

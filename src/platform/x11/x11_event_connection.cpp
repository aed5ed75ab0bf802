#include "platform/x11/x11_event_connection.h"

#include <utility>

namespace tavrin {
namespace {

using namespace std::chrono_literals;

/// A flood of events can last as long as they are read; the rest of the program must get its turn.
constexpr auto timeAtOnce = 10ms;
/// In a flood, how often what it changed is reported.
constexpr auto batchInterval = 500ms;

} // namespace

X11EventConnection::X11EventConnection(std::unique_ptr<X11Connection> connection, EventLoop& eventLoop,
                                       Scheduler& scheduler)
    : connection_(std::move(connection)), scheduler_(scheduler),
      watch_(eventLoop.watchReadable(connection_->fileDescriptor(), [this] { dispatch(); })) {}

void X11EventConnection::flush() {
    xcb_flush(get());
    dispatchSoon();
}

void X11EventConnection::dispatchSoon() {
    pendingDispatch_ = scheduler_.after(Seconds{0}, [this] { dispatch(); });
}

void X11EventConnection::dispatch() {
    // A handler may end all of this, the connection included.
    const std::weak_ptr<bool> alive = isAlive_;
    const auto deadline = Clock::now() + timeAtOnce;
    bool isMore = true;
    while (Clock::now() < deadline) {
        const auto event = owned(xcb_poll_for_event(get()));
        if (!event) {
            isMore = false;
            break;
        }
        if (event->response_type == 0)
            continue; // the error of a request about a window that vanished
        isBatchOpen_ = true;
        events_.emit(*event);
        if (alive.expired())
            return;
    }
    if (isMore) {
        // The descriptor may be silent about events that xcb has read already.
        dispatchSoon();
        if (Clock::now() - lastBatch_ < batchInterval)
            return;
    }
    if (std::exchange(isBatchOpen_, false)) {
        lastBatch_ = Clock::now();
        batches_.emit();
        if (alive.expired())
            return;
    }
    if (connection_->isBroken() && watch_) {
        watch_.release();
        loss_.emit();
    }
}

} // namespace tavrin

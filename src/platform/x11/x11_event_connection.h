#pragma once

#include "base/signal.h"
#include "platform/x11/x11_connection.h"
#include "ports/runtime.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

namespace tavrin {

/// The connection for news. Its descriptor is watched by the event loop, so only what must wake an idle
/// program is selected here. Requests with answers belong on the other connection.
class X11EventConnection {
public:
    X11EventConnection(std::unique_ptr<X11Connection> connection, EventLoop& eventLoop, Scheduler& scheduler);

    X11Connection& server() { return *connection_; }
    xcb_connection_t* get() const { return connection_->get(); }
    const X11Atoms& atoms() const { return connection_->atoms(); }
    xcb_window_t root() const { return connection_->root(); }
    Scheduler& scheduler() { return scheduler_; }

    /// Every event, in order. Its type may carry the bit of a sent event.
    Token observeEvents(std::function<void(const xcb_generic_event_t&)> handler) {
        return events_.connect(std::move(handler));
    }

    /// After all events that arrived together; in a flood that does not end, every half second.
    Token observeBatches(std::function<void()> handler) { return batches_.connect(std::move(handler)); }

    /// Once, when the server is gone.
    Token observeLoss(std::function<void()> handler) { return loss_.connect(std::move(handler)); }

    /// Sends what was requested. Events that xcb reads meanwhile are delivered in the next turn of the event
    /// loop, since the descriptor will not announce them any more.
    void flush();

private:
    using Clock = std::chrono::steady_clock;
    void dispatch();
    void dispatchSoon();

    std::unique_ptr<X11Connection> connection_;
    Scheduler& scheduler_;
    Signal<const xcb_generic_event_t&> events_;
    Signal<> batches_;
    Signal<> loss_;
    Token watch_;
    Token pendingDispatch_;
    bool isBatchOpen_ = false; ///< events came since the last batch was reported
    Clock::time_point lastBatch_;
    std::shared_ptr<bool> isAlive_ = std::make_shared<bool>(true);
};

} // namespace tavrin

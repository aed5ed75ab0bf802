#include "platform/x11/x11_event_connection.h"

#include "platform/x11/x11_reply.h"

namespace tavrin {

X11EventConnection::X11EventConnection(std::unique_ptr<X11Connection> connection, EventLoop& eventLoop,
                                       Scheduler& scheduler)
    : connection_(std::move(connection)), scheduler_(scheduler),
      watch_(eventLoop.watchReadable(connection_->fileDescriptor(), [this] { dispatch(); })) {}

void X11EventConnection::flush() {
    xcb_flush(get());
    pendingDispatch_ = scheduler_.after(Seconds{0}, [this] { dispatch(); });
}

void X11EventConnection::dispatch() {
    // A handler may end all of this, the connection included.
    const std::weak_ptr<bool> alive = isAlive_;
    bool hadEvents = false;
    while (const auto event = owned(xcb_poll_for_event(get()))) {
        if (event->response_type == 0)
            continue; // the error of a request about a window that vanished
        hadEvents = true;
        events_.emit(*event);
        if (alive.expired())
            return;
    }
    if (hadEvents) {
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

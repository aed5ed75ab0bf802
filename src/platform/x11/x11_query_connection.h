#pragma once

#include "base/token.h"
#include "platform/x11/x11_connection.h"
#include "ports/runtime.h"

#include <chrono>
#include <memory>
#include <vector>

namespace tavrin {

/// How old an answer may be.
enum class Freshness {
    now,    ///< the server is asked whether anything changed
    recent, ///< a change of the last two milliseconds may be missing; many questions, hardly any round trip
};

/// Keeps a mirror of what the server said.
class X11Mirror {
public:
    virtual ~X11Mirror() = default;

    /// An event arrived (its type may carry the bit of a sent event).
    virtual void handleEvent(const xcb_generic_event_t& event) = 0;

    /// There was no question for some time, or too many events: unselect what was selected and forget
    /// everything.
    virtual void forget() = 0;
};

/// The connection for questions. Events are selected from the first question until some seconds after the
/// last one, so that a later question reads only what changed. They are read together with the answers, and
/// between questions as they come, so that they do not pile up; when too many come, all is forgotten at once.
/// Before the first question and some seconds after the last one nothing wakes the program.
class X11QueryConnection {
public:
    using Clock = std::chrono::steady_clock;

    X11QueryConnection(std::unique_ptr<X11Connection> connection, EventLoop& eventLoop, Scheduler& scheduler);

    X11Connection& server() { return *connection_; }
    xcb_connection_t* get() const { return connection_->get(); }
    const X11Atoms& atoms() const { return connection_->atoms(); }
    xcb_window_t root() const { return connection_->root(); }

    /// Mirrors get every event, in the order in which they joined; they must outlive the use of this object.
    void join(X11Mirror& mirror) { mirrors_.push_back(&mirror); }

    /// Passes everything that happened to the mirrors, as far as `freshness` demands. From the first call
    /// until the mirrors forget, changes of the root window are selected. False when the server
    /// is gone.
    bool bringUpToDate(Freshness freshness);

    /// Waits until at least one event came and was passed on; false after `deadline`, however many events
    /// there still are, and without a server.
    bool waitForEvents(Clock::time_point deadline);

private:
    using EventSource = xcb_generic_event_t* (*)(xcb_connection_t*);
    int dispatchEvents(EventSource next);
    void beginUse();
    void readBetweenQuestions();
    void endUseWhenIdle();
    void endUse();

    std::unique_ptr<X11Connection> connection_;
    EventLoop& eventLoop_;
    Scheduler& scheduler_;
    std::vector<X11Mirror*> mirrors_;
    bool isInUse_ = false;
    int unaskedEvents_ = 0; ///< since the last question
    Clock::time_point lastUse_;
    Clock::time_point lastRoundTrip_;
    Token watch_;
    Token idleTimer_;
};

} // namespace tavrin

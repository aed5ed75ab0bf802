#pragma once

#include "base/signal.h"
#include "ports/session.h"

#include <map>

namespace tavrin {

/// Collects the events of several platform folders.
class SystemEventHub : public SystemEvents {
public:
    Token observe(SystemEvent event, std::function<void()> handler) override {
        return signals_[event].connect(std::move(handler));
    }

    void emit(SystemEvent event) { signals_[event].emit(); }

private:
    std::map<SystemEvent, Signal<>> signals_;
};

} // namespace tavrin

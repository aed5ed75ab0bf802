#pragma once

#include "ports/session.h"

namespace tavrin {

/// Nothing ever happens. A real one calls on the main thread, once per event, and passes on every change of
/// the screens: merging bursts is left to those who listen.
class UnsupportedSystemEvents final : public SystemEvents {
public:
    Token observe(SystemEvent, std::function<void()>) override { return {}; }
};

} // namespace tavrin

#pragma once

#include <chrono>
#include <functional>

namespace tavrin::desktop {

/// How long the harness waits for something that should happen at once. Generous, because sanitizer builds
/// on a busy machine are slow; a passing test never waits it out.
inline constexpr std::chrono::milliseconds patience{15000};

/// Runs the event loop until `condition` holds. It is asked again after every X event, D-Bus message, line of
/// process output or timer, and a last time at the deadline; false when it still does not hold then.
bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit = patience);

} // namespace tavrin::desktop

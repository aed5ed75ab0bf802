#pragma once

#include <chrono>
#include <functional>

namespace tavrin::desktop {

/// How long the harness waits for a sign of life. Generous, because sanitizer builds on a busy machine are
/// slow; a passing test never waits it out.
inline constexpr std::chrono::milliseconds patience{15000};

/// Runs the event loop until `condition` holds. It is asked again after every X event, D-Bus message and line
/// of process output. False when nothing has arrived for the length of `patience`, or when the condition
/// still does not hold after eight times that, whatever arrives.
bool waitUntil(const std::function<bool()>& condition);

/// The same, but false when the condition does not hold within `limit`, whatever arrives. For what must not
/// happen, and for what must happen in time.
bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit);

} // namespace tavrin::desktop

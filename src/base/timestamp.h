#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// A date with its time of day, in whole seconds as files hold it. Years 1 to 9999 have a text.
using Timestamp = std::chrono::sys_seconds;

/// Seconds as a real number, the unit of every interval in the program.
using Seconds = std::chrono::duration<double>;

/// ISO 8601 in UTC, for example 2026-03-01T09:30:00Z.
std::string iso8601Text(Timestamp time);

/// Reads a date with time, whole seconds and either Z or an offset such as +01:00; absent for any other
/// text, including dates that are on no calendar. 24:00:00 is the midnight that ends a day.
std::optional<Timestamp> parseIso8601(std::string_view text);

} // namespace tavrin

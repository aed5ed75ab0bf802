#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// An absolute point in time.
using Timestamp = std::chrono::system_clock::time_point;

/// Seconds as a real number, the unit of every interval in the program.
using Seconds = std::chrono::duration<double>;

/// ISO 8601 in UTC with whole seconds, for example 2026-03-01T09:30:00Z; fractions are cut off.
std::string iso8601Text(Timestamp time);

/// Reads a date with time, whole seconds and either Z or an offset such as +01:00; absent for any other
/// text, including dates that are on no calendar.
std::optional<Timestamp> parseIso8601(std::string_view text);

} // namespace tavrin

#pragma once

#include "base/timestamp.h"

#include <optional>
#include <string>

namespace tavrin {

/// How long ago that was in words, for example "5 minutes ago"; absent from a day on (and for the future),
/// where a date says more.
std::optional<std::string> relativeTimeText(Timestamp then, Timestamp now);

} // namespace tavrin

#pragma once

#include "records/monitor_profile.h"

#include <string>
#include <variant>
#include <vector>

namespace tavrin {

/// The verdict on which saved setup is connected.
namespace match {

struct Exact {
    MonitorProfile profile;
    std::string explanation;
    bool operator==(const Exact&) const = default;
};

struct Suggested {
    MonitorProfile profile; ///< the best candidate; the user has to confirm it
    std::string explanation;
    bool operator==(const Suggested&) const = default;
};

struct Ambiguous {
    std::vector<MonitorProfile> profiles; ///< all candidates, best first
    std::string explanation;
    bool operator==(const Ambiguous&) const = default;
};

struct NoMatch {
    bool operator==(const NoMatch&) const = default;
};

} // namespace match

using MatchResult = std::variant<match::Exact, match::Suggested, match::Ambiguous, match::NoMatch>;

/// How a verdict is put into words.
struct ProfileMatchExplanation {
    std::string title;
    std::string message;
    bool operator==(const ProfileMatchExplanation&) const = default;
};

} // namespace tavrin

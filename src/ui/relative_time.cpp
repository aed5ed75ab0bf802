#include "ui/relative_time.h"

#include <fmt/format.h>

namespace tavrin {

std::optional<std::string> relativeTimeText(Timestamp then, Timestamp now) {
    using namespace std::chrono;
    const auto passed = now - then;
    if (passed < seconds{0} || passed >= hours{24})
        return std::nullopt;
    if (passed < minutes{1})
        return "just now";
    const bool inMinutes = passed < hours{1};
    const auto count =
        inMinutes ? duration_cast<minutes>(passed).count() : duration_cast<hours>(passed).count();
    return fmt::format("{} {}{} ago", count, inMinutes ? "minute" : "hour", count == 1 ? "" : "s");
}

} // namespace tavrin

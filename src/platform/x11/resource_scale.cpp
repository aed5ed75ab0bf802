#include "platform/x11/resource_scale.h"

#include <charconv>
#include <system_error>

namespace tavrin {
namespace {

constexpr double usualResolution = 96;
constexpr std::string_view blank = " \t\r";

std::string_view withoutBlanks(std::string_view text) {
    const auto begin = text.find_first_not_of(blank);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(blank) - begin + 1);
}

} // namespace

double resourceScale(std::string_view resources) {
    double scale = 1;
    while (!resources.empty()) {
        const auto line = resources.substr(0, resources.find('\n'));
        resources.remove_prefix(line.size() < resources.size() ? line.size() + 1 : line.size());
        const auto colon = line.find(':');
        if (colon == std::string_view::npos || withoutBlanks(line.substr(0, colon)) != "Xft.dpi")
            continue;
        const auto value = withoutBlanks(line.substr(colon + 1));
        double resolution = 0;
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), resolution);
        if (error == std::errc{} && end == value.data() + value.size() && resolution >= 24 &&
            resolution <= 1536)
            scale = resolution / usualResolution;
    }
    return scale;
}

} // namespace tavrin

#include "base/timestamp.h"

#include <fmt/chrono.h>

#include <charconv>

namespace tavrin {
namespace {

/// Reads exactly `length` digits at the front of `text` and removes them.
std::optional<int> takeDigits(std::string_view& text, std::size_t length) {
    if (text.size() < length || text[0] == '-')
        return std::nullopt;
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + length, value);
    if (error != std::errc{} || end != text.data() + length)
        return std::nullopt;
    text.remove_prefix(length);
    return value;
}

bool takeCharacter(std::string_view& text, char expected) {
    if (text.empty() || text.front() != expected)
        return false;
    text.remove_prefix(1);
    return true;
}

/// The rest of a date text after the seconds: Z, or a signed offset of hours and minutes.
std::optional<std::chrono::minutes> parseOffset(std::string_view text) {
    if (text == "Z")
        return std::chrono::minutes{0};
    const bool negative = text.starts_with('-');
    if (!negative && !text.starts_with('+'))
        return std::nullopt;
    text.remove_prefix(1);
    const auto hours = takeDigits(text, 2);
    takeCharacter(text, ':');
    const auto minutes = takeDigits(text, 2);
    if (!hours || !minutes || !text.empty() || *hours > 23 || *minutes > 59)
        return std::nullopt;
    const auto offset = std::chrono::hours{*hours} + std::chrono::minutes{*minutes};
    return negative ? -offset : offset;
}

} // namespace

std::string iso8601Text(Timestamp time) {
    using namespace std::chrono;
    const auto day = floor<days>(time);
    const year_month_day date{day};
    const hh_mm_ss clock{time - day};
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                       clock.hours().count(), clock.minutes().count(), clock.seconds().count());
}

std::optional<Timestamp> parseIso8601(std::string_view text) {
    using namespace std::chrono;
    const auto yearValue = takeDigits(text, 4);
    const bool firstDash = takeCharacter(text, '-');
    const auto monthValue = takeDigits(text, 2);
    const bool secondDash = takeCharacter(text, '-');
    const auto dayValue = takeDigits(text, 2);
    const bool separator = takeCharacter(text, 'T');
    const auto hourValue = takeDigits(text, 2);
    const bool firstColon = takeCharacter(text, ':');
    const auto minuteValue = takeDigits(text, 2);
    const bool secondColon = takeCharacter(text, ':');
    const auto secondValue = takeDigits(text, 2);
    if (!yearValue || !firstDash || !monthValue || !secondDash || !dayValue || !separator || !hourValue ||
        !firstColon || !minuteValue || !secondColon || !secondValue)
        return std::nullopt;
    const auto offset = parseOffset(text);
    const year_month_day date{year{*yearValue}, month{static_cast<unsigned>(*monthValue)},
                              day{static_cast<unsigned>(*dayValue)}};
    const bool endsDay = *hourValue == 24 && *minuteValue == 0 && *secondValue == 0;
    if (!offset || !date.ok() || (*hourValue > 23 && !endsDay) || *minuteValue > 59 || *secondValue > 59)
        return std::nullopt;
    const auto time =
        sys_days{date} + hours{*hourValue} + minutes{*minuteValue} + seconds{*secondValue} - *offset;
    // It is the year in UTC that counts, because that is what is written.
    const year_month_day written{floor<days>(time)};
    if (written.year() < year{1} || written.year() > year{9999})
        return std::nullopt;
    return time;
}

} // namespace tavrin

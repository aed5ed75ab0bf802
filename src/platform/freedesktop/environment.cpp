#include "platform/freedesktop/environment.h"

#include <algorithm>
#include <cstdlib>

namespace tavrin {

std::optional<std::string> processEnvironment(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::optional<std::string> nonEmpty(const Environment& environment, const std::string& name) {
    auto value = environment(name);
    if (value && value->empty())
        return std::nullopt;
    return value;
}

std::vector<std::string> splitList(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const auto end = std::min(text.find(separator), text.size());
        if (end > 0)
            parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

std::vector<std::string> messageLocales(const Environment& environment) {
    std::string locale;
    for (const auto* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const auto value = nonEmpty(environment, name)) {
            locale = *value;
            break;
        }
    std::string modifier;
    if (const auto at = locale.find('@'); at != std::string::npos) {
        modifier = locale.substr(at);
        locale.erase(at);
    }
    if (const auto dot = locale.find('.'); dot != std::string::npos)
        locale.erase(dot);
    if (locale.empty() || locale == "C" || locale == "POSIX")
        return {};

    const std::string language = locale.substr(0, locale.find('_'));
    std::vector<std::string> locales;
    for (const auto& base : {locale, language}) {
        if (base.empty() || (!locales.empty() && locales.back() == base))
            continue;
        if (!modifier.empty())
            locales.push_back(base + modifier);
        locales.push_back(base);
    }
    return locales;
}

} // namespace tavrin

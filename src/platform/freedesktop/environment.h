#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// Looks up an environment variable; absent when it is not set.
using Environment = std::function<std::optional<std::string>(const std::string& name)>;

/// The variable of this process.
std::optional<std::string> processEnvironment(const std::string& name);

/// The variable, where an empty value counts as not set.
std::optional<std::string> nonEmpty(const Environment& environment, const std::string& name);

/// The parts of a list, without empty ones.
std::vector<std::string> splitList(std::string_view text, char separator);

/// The languages in which texts are shown, best first, in the form of the localised keys of desktop entries
/// (for example sr_YU@Latn, sr_YU, sr@Latn, sr); empty for the untranslated texts.
std::vector<std::string> messageLocales(const Environment& environment);

} // namespace tavrin

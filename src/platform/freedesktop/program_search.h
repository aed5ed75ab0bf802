#pragma once

#include "platform/freedesktop/environment.h"

#include <filesystem>
#include <optional>
#include <string>

namespace tavrin {

/// The file that a command's first word starts: an absolute path itself, a plain name as the first of that
/// name in the folders of $PATH. Absent when there is no executable file; a relative path leads nowhere.
std::optional<std::filesystem::path> findProgram(const std::string& program, const Environment& environment);

} // namespace tavrin

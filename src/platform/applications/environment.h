#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// A variable of the environment; absent when it is not set or empty.
std::optional<std::string> environmentVariable(const char* name);

/// The parts of a list, without empty ones.
std::vector<std::string> splitList(std::string_view text, char separator);

/// The languages in which texts are shown, best first, in the form of the localised keys of desktop entries
/// (for example sr_YU@Latn, sr_YU, sr@Latn, sr); empty for the untranslated texts.
std::vector<std::string> messageLocales();

/// The file that a command's first word starts: an absolute path itself, a plain name as the first of that
/// name in the folders of $PATH. Absent when there is no executable file; a relative path leads nowhere.
std::optional<std::filesystem::path> findProgram(const std::string& program);

/// The bytes of a regular file of at most `maximumBytes`; absent when it is larger, of another kind, or
/// cannot be read. Never waits. Also reads the kernel's files, which do not know their size.
std::optional<std::string> readSmallFile(const std::filesystem::path& path, std::size_t maximumBytes);

} // namespace tavrin

#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace tavrin {

/// The bytes of a regular file of at most `maximumBytes`; absent when it is larger, of another kind, or
/// cannot be read. Never waits. Also reads the kernel's files, which do not know their size.
std::optional<std::string> readSmallFile(const std::filesystem::path& path, std::size_t maximumBytes);

} // namespace tavrin

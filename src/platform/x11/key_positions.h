#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace tavrin {

/// Where the keys of a keyboard are. The server numbers them as the input layer does, plus 8, when it has
/// real keyboards; a server for remote or virtual desktops may number all but the main block otherwise, and
/// then the names of the keys tell.
class KeyPositions {
public:
    /// The four-letter names of the keys that have one, by the server's key number.
    using Names = std::map<std::uint8_t, std::string>;

    KeyPositions() = default;
    explicit KeyPositions(const Names& names);

    /// The number of the key in the input layer; absent when the key's position is unknown.
    std::optional<std::uint32_t> evdevCode(std::uint8_t key) const;

private:
    std::optional<std::map<std::uint8_t, std::uint32_t>> renumbered_; ///< absent with the usual numbers
};

} // namespace tavrin

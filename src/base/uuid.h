#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// A 128-bit identifier.
struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    auto operator<=>(const Uuid&) const = default;

    /// A fresh random identifier.
    static Uuid random();

    /// Reads the 36-character form in either case; absent for any other text.
    static std::optional<Uuid> parse(std::string_view text);

    /// The 36-character form in upper case.
    std::string text() const;
};

} // namespace tavrin

template <>
struct std::hash<tavrin::Uuid> {
    std::size_t operator()(const tavrin::Uuid& uuid) const noexcept {
        return std::hash<std::string_view>{}(
            {reinterpret_cast<const char*>(uuid.bytes.data()), uuid.bytes.size()});
    }
};

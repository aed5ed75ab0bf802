#include "platform/display_identity/edid.h"

#include <algorithm>
#include <array>

namespace tavrin {
namespace {

constexpr std::size_t blockSize = 128;
constexpr std::array<std::uint8_t, 8> header = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};

bool startsWithIgnoringCase(std::string_view text, std::string_view lowerCasePrefix) {
    return text.size() >= lowerCasePrefix.size() &&
           std::ranges::equal(text.substr(0, lowerCasePrefix.size()), lowerCasePrefix, [](char a, char b) {
               return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
           });
}

} // namespace

std::optional<EdidIdentity> edidIdentity(std::span<const std::uint8_t> block) {
    if (block.size() < blockSize || !std::ranges::equal(block.first(header.size()), header))
        return std::nullopt;
    const auto byte = [&](std::size_t i) { return static_cast<std::uint32_t>(block[i]); };
    const EdidIdentity identity{.manufacturer = byte(8) << 8 | byte(9),
                                .product = byte(10) | byte(11) << 8,
                                .serial = byte(12) | byte(13) << 8 | byte(14) << 16 | byte(15) << 24};
    if (identity.manufacturer == 0 && identity.product == 0)
        return std::nullopt;
    return identity;
}

std::uint32_t connectorNumber(std::string_view connectorName) {
    // The usual CRC-32 (reflected, polynomial 0xEDB88320).
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char c : connectorName) {
        crc ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

bool isBuiltinConnector(std::string_view connectorName) {
    return std::ranges::any_of(
        std::array<std::string_view, 3>{"edp", "lvds", "dsi"},
        [&](std::string_view prefix) { return startsWithIgnoringCase(connectorName, prefix); });
}

} // namespace tavrin

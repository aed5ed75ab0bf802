#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace tavrin {

/// The numbers that identify a display, from the data block it sends over its cable.
struct EdidIdentity {
    std::uint32_t manufacturer = 0; ///< 16 bits, the packed letters as they stand in the block
    std::uint32_t product = 0;
    std::uint32_t serial = 0; ///< 0 when the display reports none

    bool operator==(const EdidIdentity&) const = default;
};

/// Reads the base block. Absent when the bytes are no such block or name no maker and product; checksums
/// are not demanded, since displays in use get them wrong.
std::optional<EdidIdentity> edidIdentity(std::span<const std::uint8_t> block);

/// The identity of an output whose display sends no data: the same connector is the same tomorrow.
std::uint32_t connectorNumber(std::string_view connectorName);

/// The connector of a built-in panel.
bool isBuiltinConnector(std::string_view connectorName);

} // namespace tavrin

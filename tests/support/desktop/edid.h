#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace tavrin::desktop {

/// What a monitor says of itself.
struct MonitorIdentity {
    std::string manufacturer = "TVR"; ///< three capital letters
    std::uint16_t product = 1;
    std::uint32_t serial = 1;
    std::string name = "Tavrin test";
};

/// The identification block (EDID 1.3) that a monitor with that identity would send.
std::array<std::uint8_t, 128> makeEdid(const MonitorIdentity& identity);

} // namespace tavrin::desktop

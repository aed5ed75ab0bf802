#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <optional>
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

/// Writes it where the kernel would tell it of that output; an empty one without an identity. `systemRoot`
/// stands in for /sys.
void identifyOutput(const QString& systemRoot, const QString& output,
                    const std::optional<MonitorIdentity>& identity);

} // namespace tavrin::desktop

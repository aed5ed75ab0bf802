#include "support/desktop/edid.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <numeric>

namespace tavrin::desktop {

std::array<std::uint8_t, 128> makeEdid(const MonitorIdentity& identity) {
    std::array<std::uint8_t, 128> block{};
    std::fill(block.begin() + 1, block.begin() + 7, 0xff);

    // Three letters of five bits each, big-endian; everything else in the block is little-endian.
    std::uint16_t letters = 0;
    for (const char letter : identity.manufacturer.substr(0, 3))
        letters = static_cast<std::uint16_t>(letters << 5 | (letter - 'A' + 1));
    block[8] = static_cast<std::uint8_t>(letters >> 8);
    block[9] = static_cast<std::uint8_t>(letters);
    block[10] = static_cast<std::uint8_t>(identity.product);
    block[11] = static_cast<std::uint8_t>(identity.product >> 8);
    for (int byte = 0; byte < 4; ++byte)
        block[12 + byte] = static_cast<std::uint8_t>(identity.serial >> (8 * byte));
    block[17] = 30; // made in 2020
    block[18] = 1;  // version 1.3
    block[19] = 3;
    block[20] = 0x80; // a digital input
    block[21] = 60;   // 60 by 34 cm
    block[22] = 34;
    block[23] = 120; // gamma 2.2
    constexpr std::array<std::uint8_t, 10> standardColours{0xee, 0x91, 0xa3, 0x54, 0x4c,
                                                           0x99, 0x26, 0x0f, 0x50, 0x54};
    std::copy(standardColours.begin(), standardColours.end(), block.begin() + 25);
    std::fill(block.begin() + 38, block.begin() + 54, 0x01); // no standard timings

    // The first of the four descriptors is the name, the others are empty.
    for (int descriptor = 54; descriptor < 126; descriptor += 18)
        block[descriptor + 3] = 0x10;
    block[54 + 3] = 0xfc;
    std::string name = identity.name.substr(0, 12) + '\n';
    name.resize(13, ' ');
    std::copy(name.begin(), name.end(), block.begin() + 54 + 5);

    block[127] = static_cast<std::uint8_t>(-std::accumulate(block.begin(), block.end(), 0));
    return block;
}

void identifyOutput(const QString& systemRoot, const QString& output,
                    const std::optional<MonitorIdentity>& identity) {
    const auto folder = systemRoot + "/class/drm/card0-" + output;
    QFile file(folder + "/edid");
    if (!QDir().mkpath(folder) || !file.open(QIODevice::WriteOnly))
        return;
    const auto block = makeEdid(identity.value_or(MonitorIdentity()));
    file.write(reinterpret_cast<const char*>(block.data()), identity ? qint64(block.size()) : 0);
}

} // namespace tavrin::desktop

#include "platform/display_identity/edid.h"

#include <gtest/gtest.h>

#include <vector>

namespace tavrin {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// The base block of a display: header, maker, product and serial, then `rest` bytes.
Bytes block(std::initializer_list<std::uint8_t> identity, std::size_t rest = 110) {
    Bytes bytes = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
    bytes.insert(bytes.end(), identity);
    bytes.resize(bytes.size() + rest);
    return bytes;
}

TEST(EdidTest, whatIsNoBlockOfADisplayHasNoIdentity) {
    const auto good = block({0x10, 0xAC, 0xB8, 0xA0, 0, 0, 0, 0, 0, 0});
    ASSERT_EQ(good.size(), 128U);
    auto badHeader = good;
    badHeader[7] = 0xFF;
    auto cut = good;
    cut.pop_back();
    const auto nameless = block({0, 0, 0, 0, 1, 2, 3, 4, 0, 0});
    for (const auto& bytes : {badHeader, cut, nameless, Bytes{}})
        EXPECT_EQ(edidIdentity(bytes), std::nullopt);
}

TEST(EdidTest, builtInPanelsAreKnownByTheirConnector) {
    for (const auto* name : {"eDP-1", "eDP1", "LVDS", "LVDS-1-2", "DSI-1", "edp"})
        EXPECT_TRUE(isBuiltinConnector(name)) << name;
    for (const auto* name : {"DP-1", "HDMI-A-1", "VGA-1", "DUMMY0", "ed", ""})
        EXPECT_FALSE(isBuiltinConnector(name)) << name;
}

} // namespace
} // namespace tavrin

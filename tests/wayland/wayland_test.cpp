#include "platform/wayland/wayland_outputs.h"
#include "posix/temporary_directory.h"
#include "wayland/named_keyboard.h"

#include <gtest/gtest.h>

#include <fstream>
#include <xkbcommon/xkbcommon.h>

namespace tavrin {

static void PrintTo(const DisplayHardware& hardware, std::ostream* out) {
    *out << std::hex << hardware.vendorNumber << ' ' << hardware.modelNumber << ' ' << hardware.serialNumber;
}

namespace {

/// As the kernel lays it out: a folder for each connector, with what its display sent.
class OutputHardwareTest : public ::testing::Test {
protected:
    void plug(const std::string& folder, const std::string& block) {
        const auto path = root_.path() / "class/drm" / folder;
        std::filesystem::create_directories(path);
        std::ofstream(path / "edid", std::ios::binary) << block;
    }

    DisplayHardware read(const std::string& connector) {
        return outputHardware({.name = connector, .pixelsWide = 3840, .pixelsHigh = 2160}, root_.path());
    }

    static std::string block(char serial) {
        std::string bytes("\0\xFF\xFF\xFF\xFF\xFF\xFF\0\x10\xAC\xB8\xA0", 12);
        bytes += serial;
        bytes.resize(256);
        return bytes;
    }

private:
    TemporaryDirectory root_;
};

TEST_F(OutputHardwareTest, comesFromTheDataOfTheConnectorOfThatName) {
    plug("card0-DP-1", block(1));
    plug("card1-HDMI-A-1", block(2));
    plug("card1-DP-11", block(3));
    plug("card1-eDP-1", block(4));
    const auto told = [](std::uint32_t serial, bool isBuiltin = false) {
        return DisplayHardware{0x10AC, 0xA0B8, serial, isBuiltin, 3840, 2160};
    };
    EXPECT_EQ(read("DP-1"), told(1));
    EXPECT_EQ(read("HDMI-A-1"), told(2));
    EXPECT_EQ(read("eDP-1"), told(4, true));
}

TEST_F(OutputHardwareTest, isTheConnectorWhereTheDisplaySendsNothing) {
    plug("card0-DP-1", "");
    plug("card0-A-1", block(1));
    for (const std::string name : {"DP-1", "HDMI-A-1", "HEADLESS-1", "", "../..", "1"}) {
        const auto hardware = read(name);
        EXPECT_EQ(hardware.vendorNumber, 0U) << name;
        EXPECT_EQ(hardware.serialNumber, 0U) << name;
    }
    EXPECT_EQ(read("123456789").modelNumber, 0xCBF43926U); // the check value of the algorithm; as on X11
    EXPECT_EQ(read("").modelNumber, 0U);
}

TEST(KeyboardMapTest, keysArePositionsWhateverIsPrintedOnThem) {
    using Shift = KeyboardMap::Shift;
    constexpr std::uint32_t oneKey = 2, qKey = 16, sKey = 31, homeKey = 102;
    const auto map = namedKeyboard("fr,ru");
    EXPECT_EQ(map.layoutCount(), 2U);
    EXPECT_EQ(map.symbol(oneKey, 0), XKB_KEY_ampersand);
    EXPECT_EQ(map.symbol(oneKey, 0, Shift::isDown), XKB_KEY_1);
    EXPECT_EQ(map.symbol(oneKey, 1), XKB_KEY_1);
    EXPECT_EQ(map.symbol(sKey, 1), XKB_KEY_Cyrillic_yeru);
    EXPECT_EQ(map.symbol(homeKey, 1), XKB_KEY_Home); // a key with one layout serves for all
    EXPECT_EQ(map.symbol(qKey, 2), XKB_KEY_NoSymbol);
    EXPECT_EQ(map.symbol(0xFFFFFFFF, 0), XKB_KEY_NoSymbol);
    EXPECT_EQ(map.position(XKB_KEY_a), qKey);
    EXPECT_EQ(map.position(XKB_KEY_Cyrillic_yeru), sKey);
    EXPECT_EQ(map.position(XKB_KEY_Thai_sosua), std::nullopt);
    for (const auto* text : {"", "xkb_keymap {", "no keymap"})
        EXPECT_FALSE(KeyboardMap::parse(text)) << text;
}

} // namespace
} // namespace tavrin

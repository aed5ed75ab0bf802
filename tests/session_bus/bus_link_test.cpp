#include "applications/environment_change.h"
#include "platform/session_bus/bus_link.h"
#include "private_bus.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

TEST(BusProbeTest, onlyABusThatAnswersACallCounts) {
    using enum BusProbe::State;
    testApplication();
    PrivateBus bus;
    EXPECT_EQ(BusProbe(bus.address()).state(std::chrono::seconds(5)), answered);
    for (const auto* address : {"", "unix:path=/nonexistent", "unix:path=/dev/null",
                                "unix:", "tcp:host=localhost", "autolaunch:", "unixexec:path=/bin/true"})
        EXPECT_EQ(BusProbe(address).state(std::chrono::seconds(5)), refused) << address;
}

TEST(BusLinkTest, isNoticedWhenItsFolderComesLater) {
    testApplication();
    TemporaryDirectory runtime;
    const auto folder = runtime.path() / "run time/deeper";
    EnvironmentChange variables;
    variables.set("XDG_RUNTIME_DIR", folder.string());
    variables.set("DBUS_SESSION_BUS_ADDRESS", std::nullopt);
    BusLink link(busAddresses().session);
    bool isOpen = false;
    const auto opened = link.observeOpened([&] { isOpen = true; });
    link.open();
    PrivateBus bus;
    std::filesystem::create_directories(folder);
    std::filesystem::create_symlink(bus.address().substr(std::string("unix:path=").size()), folder / "bus");
    EXPECT_TRUE(waitUntil([&] { return isOpen; }));
}

} // namespace
} // namespace tavrin

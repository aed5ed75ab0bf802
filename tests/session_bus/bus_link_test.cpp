#include "applications/environment_change.h"
#include "platform/session_bus/bus_link.h"
#include "private_bus.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tavrin {
namespace {

using std::chrono::milliseconds;

/// Lets everybody in and says nothing, or only this to each.
class SilentBus {
public:
    explicit SilentBus(std::string words = "") : words_(std::move(words)) {
        sockaddr_un place{AF_UNIX, {}};
        (directory_.path() / "bus").string().copy(place.sun_path, sizeof place.sun_path - 1);
        ::bind(listener_, reinterpret_cast<const sockaddr*>(&place), sizeof place);
        ::listen(listener_, 8);
    }
    ~SilentBus() {
        ::close(listener_);
        ::close(guest_);
    }
    /// Speaks to the one who is waiting.
    void speak() {
        guest_ = ::accept(listener_, nullptr, nullptr);
        EXPECT_EQ(::send(guest_, words_.data(), words_.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(words_.size()));
    }
    std::string address() const { return "unix:path=" + (directory_.path() / "bus").string() + ",guid=00"; }

private:
    TemporaryDirectory directory_;
    std::string words_;
    int listener_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int guest_ = -1;
};

TEST(BusProbeTest, onlyABusThatAnswersACallCounts) {
    using enum BusProbe::State;
    testApplication();
    PrivateBus bus;
    EXPECT_EQ(BusProbe(bus.address()).state(milliseconds(5000)), answered);
    for (const auto* address : {"", "unix:path=/nonexistent", "unix:path=/dev/null",
                                "unix:", "tcp:host=localhost", "autolaunch:", "unixexec:path=/bin/true"})
        EXPECT_EQ(BusProbe(address).state(milliseconds(5000)), refused) << address;
    for (const auto& [words, state] : {std::pair("", waiting), std::pair("OK 0123\r\n", waiting),
                                       std::pair("REJECTED EXTERNAL\r\n", refused)}) {
        SilentBus silent(words);
        BusProbe probe(silent.address());
        silent.speak();
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(probe.state(milliseconds(100)), state) << words;
        EXPECT_LT(std::chrono::steady_clock::now() - begin, milliseconds(3000));
    }
}

TEST(BusLinkTest, comesBackWithTheBus) {
    testApplication();
    PrivateBus bus;
    bus.stop();
    BusLink link(bus.address());
    int openings = 0, closings = 0;
    const auto opened = link.observeOpened([&] {
        EXPECT_TRUE(link.connection().isConnected());
        ++openings;
    });
    const auto closed = link.observeClosed([&] { ++closings; });
    link.open();
    EXPECT_FALSE(link.connection().isConnected());
    for (int i = 1; i <= 2; ++i) {
        bus.start();
        ASSERT_TRUE(waitUntil([&] { return openings == i; })) << i;
        bus.stop();
        ASSERT_TRUE(waitUntil([&] { return closings == i; })) << i;
        EXPECT_FALSE(link.connection().isConnected());
    }
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

#include "platform/freedesktop/session_bus_instances.h"
#include "private_bus.h"

#include <QDBusPendingCallWatcher>
#include <gtest/gtest.h>

#include <barrier>
#include <thread>
#include <unistd.h>

namespace tavrin {
namespace {

using Probes = std::vector<InstanceProbe>;

const std::string name = SessionBusInstances::defaultName;
constexpr ProcessID secondPID = 4'000'001; // beyond the numbers that the kernel gives

class SessionBusInstancesTest : public testing::Test {
protected:
    SessionBusInstancesTest() { testApplication(); }

    SessionBusInstances instances(ProcessID pid, std::map<std::string, std::string> environment = {}) {
        return {bus.address(), pid, [environment](const std::string& variable) {
                    return environment.contains(variable) ? std::optional(environment.at(variable))
                                                          : std::nullopt;
                }};
    }

    PrivateBus bus;
    const ProcessID ownPID = ::getpid();
};

TEST_F(SessionBusInstancesTest, theFirstIsSeenUntilItEnds) {
    std::unique_ptr<SessionBusInstances> first(new SessionBusInstances(instances(ownPID)));
    EXPECT_EQ(first->runningInstances(), (Probes{{ownPID, name}}));
    {
        auto second = instances(secondPID);
        EXPECT_EQ(second.runningInstances(), (Probes{{ownPID, name}, {secondPID, name}}));
    }
    EXPECT_EQ(first->runningInstances(), (Probes{{ownPID, name}})) << "the other's end takes nothing away";
    auto waiting = instances(secondPID);
    EXPECT_EQ(waiting.runningInstances().size(), 2U);
    first.reset();
    // The name is not the waiting one's either: whoever asks next has it.
    EXPECT_EQ(instances(secondPID + 1).runningInstances(), (Probes{{secondPID + 1, name}}));
}

TEST_F(SessionBusInstancesTest, ofManyThatStartAtOnceExactlyOneIsAlone) {
    constexpr int count = 8;
    for (int round = 0; round < 5; ++round) {
        std::vector<std::unique_ptr<SessionBusInstances>> all(count);
        std::vector<Probes> seen(count);
        std::barrier start(count);
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < count; ++i)
            threads.emplace_back([&, i] {
                all[i] = std::make_unique<SessionBusInstances>(bus.address(), secondPID);
                start.arrive_and_wait();
                seen[i] = all[i]->runningInstances();
            });
        threads.clear();
        EXPECT_EQ(std::ranges::count(seen, Probes{{secondPID, name}}), 1);
        EXPECT_EQ(std::ranges::count(seen, Probes{{ownPID, name}, {secondPID, name}}), count - 1);
    }
}

TEST_F(SessionBusInstancesTest, activatingReachesTheFirstWithTheUsersToken) {
    auto first = instances(ownPID);
    first.runningInstances();
    std::vector<std::string> activations;
    const auto activate = [&](std::map<std::string, std::string> environment, ProcessID pid,
                              ProcessID from = secondPID) {
        auto second = instances(from, std::move(environment));
        bool isDone = false;
        std::jthread thread([&] {
            second.runningInstances();
            second.activate(pid);
            QMetaObject::invokeMethod(&testApplication(), [&] { isDone = true; });
        });
        EXPECT_TRUE(waitUntil([&] { return isDone; }));
    };
    activate({{"XDG_ACTIVATION_TOKEN", "before"}}, ownPID); // nobody listens yet
    first.setOnActivate([&](const std::string& token) { activations.push_back(token); });
    activate({{"XDG_ACTIVATION_TOKEN", "wayland"}, {"DESKTOP_STARTUP_ID", "x11"}}, ownPID);
    activate({{"DESKTOP_STARTUP_ID", "x11"}}, ownPID);
    activate({}, ownPID);
    activate({}, secondPID + 1); // no such process
    activate({{"DESKTOP_STARTUP_ID", "the same start"}}, ownPID, ownPID);
    constexpr ProcessID oldest = 1;
    activate({{"DESKTOP_STARTUP_ID", "much later"}}, ownPID, oldest);
    EXPECT_EQ(activations, (std::vector<std::string>{"before", "wayland", "x11", "", "much later"}));
}

TEST_F(SessionBusInstancesTest, theDesktopCanActivateInEveryWay) {
    auto first = instances(ownPID);
    first.runningInstances();
    int count = 0;
    first.setOnActivate([&](const std::string&) { ++count; });
    StandInService desktop(bus, "");
    const std::pair<const char*, QVariantList> calls[] = {
        {"Activate", {QVariantMap()}},
        {"Open", {QStringList("file:///x"), QVariantMap()}},
        {"ActivateAction", {"settings", QVariantList(), QVariantMap()}},
    };
    for (const auto& [method, arguments] : calls) {
        auto message = QDBusMessage::createMethodCall(QString::fromStdString(name), "/org/tavrin/Tavrin",
                                                      "org.freedesktop.Application", method);
        message.setArguments(arguments);
        const QDBusPendingCallWatcher watcher(desktop.connection().asyncCall(message));
        ASSERT_TRUE(waitUntil([&] { return watcher.isFinished(); }));
        EXPECT_FALSE(watcher.isError()) << method << watcher.error().message().toStdString();
    }
    EXPECT_EQ(count, 3);
}

TEST_F(SessionBusInstancesTest, aFirstThatHangsHoldsNobodyUp) {
    auto first = instances(ownPID); // handles no events in this test
    first.runningInstances();
    const auto begin = std::chrono::steady_clock::now();
    auto second = instances(secondPID);
    ASSERT_EQ(second.runningInstances().size(), 2U);
    second.activate(ownPID);
    static_assert(SessionBusInstances::activationTimeout <= std::chrono::milliseconds(250));
    // Generous for a busy machine; without the bound it would be half a minute.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
}

TEST_F(SessionBusInstancesTest, withoutABusThereIsNothingToSee) {
    for (const auto& address :
         {std::optional<std::string>(), std::optional<std::string>("unix:path=/nonexistent"),
          std::optional<std::string>("nonsense")}) {
        SessionBusInstances alone(address, ownPID);
        EXPECT_EQ(alone.runningInstances(), Probes{});
        alone.setOnActivate([](const std::string&) { FAIL(); });
        alone.activate(1);
    }
    auto first = instances(ownPID);
    first.runningInstances();
    bus.stop();
    EXPECT_EQ(first.runningInstances(), (Probes{{ownPID, name}}));
    first.activate(secondPID);
}

} // namespace
} // namespace tavrin

#include "platform/freedesktop/freedesktop_system_events.h"
#include "private_bus.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

using Events = std::vector<SystemEvent>;

constexpr auto woke = SystemEvent::didWake;
constexpr auto unlocked = SystemEvent::screenIsUnlocked;
constexpr auto managerPath = "/org/freedesktop/login1";
constexpr auto manager = "org.freedesktop.login1.Manager";
constexpr auto session = "org.freedesktop.login1.Session";
constexpr auto properties = "org.freedesktop.DBus.Properties";
constexpr auto ownPath = "/org/freedesktop/login1/session/_31";
constexpr auto otherPath = "/org/freedesktop/login1/session/_32";

class Logind : public StandInService {
public:
    explicit Logind(const PrivateBus& bus) : StandInService(bus, "org.freedesktop.login1") {
        answers["GetSession"] = [this](const QDBusMessage& message) -> QVariantList {
            isSessionKnown = true;
            return {QVariant::fromValue(
                QDBusObjectPath(message.arguments().first() == "1" ? ownPath : otherPath))};
        };
    }
    void prepareForSleep(bool isAboutToSleep) {
        emitSignal(managerPath, manager, "PrepareForSleep", {isAboutToSleep});
    }
    void hint(const char* path, bool value, const char* interface = session) {
        emitSignal(path, properties, "PropertiesChanged",
                   {interface, QVariantMap{{"LockedHint", value}, {"IdleHint", true}}, QStringList()});
    }
    bool isSessionKnown = false; ///< the program has been told which one is its own
};

class SystemEventsTest : public testing::Test {
protected:
    SystemEventsTest() { testApplication(); }

    std::unique_ptr<FreedesktopSystemEvents> listen(BusAddresses addresses) {
        return std::make_unique<FreedesktopSystemEvents>(
            FreedesktopSystemEvents::Configuration{std::move(addresses), "1", Seconds(0.02)},
            [this](SystemEvent event) { events.push_back(event); });
    }
    std::unique_ptr<FreedesktopSystemEvents> listen() {
        return listen({sessionBus.address(), systemBus.address()});
    }
    /// A listener that knows its session.
    std::unique_ptr<FreedesktopSystemEvents> listen(Logind& logind) {
        auto listener = listen();
        EXPECT_TRUE(waitUntil([&] { return logind.isSessionKnown; }));
        EXPECT_EQ(eventsSoFar(logind), Events{});
        return listener;
    }
    /// Waits until everything that was sent before has been handled, then tells what came of it.
    Events eventsSoFar(Logind& logind) {
        const auto before = events.size();
        logind.prepareForSleep(false);
        EXPECT_TRUE(waitUntil([&] { return events.size() > before && events.back() == woke; }));
        auto all = std::exchange(events, {});
        all.pop_back();
        return all;
    }

    PrivateBus sessionBus;
    PrivateBus systemBus;
    Events events;
};

TEST_F(SystemEventsTest, wakingAndTheOwnSessionsUnlockCount) {
    Logind logind(systemBus);
    const auto listener = listen(logind);

    logind.prepareForSleep(true);
    logind.hint(otherPath, false);
    logind.emitSignal(otherPath, session, "Unlock", {});
    logind.hint(ownPath, false, "org.freedesktop.login1.Other");
    logind.emitSignal(ownPath, properties, "PropertiesChanged", {"org.freedesktop.login1.Session", 5});
    logind.emitSignal(ownPath, properties, "PropertiesChanged",
                      {session, QVariantMap{{"LockedHint", "false"}}, QStringList()});
    EXPECT_EQ(eventsSoFar(logind), Events{});

    logind.emitSignal(ownPath, session, "Lock", {});
    logind.hint(ownPath, true);
    EXPECT_EQ(eventsSoFar(logind), Events{});
    logind.emitSignal(ownPath, session, "Unlock", {});
    logind.hint(ownPath, false);
    EXPECT_EQ(eventsSoFar(logind), Events{unlocked});
}

TEST_F(SystemEventsTest, aProcessOutsideOfAnySessionBelongsToTheOneWithTheDisplay) {
    Logind logind(systemBus);
    logind.answers.erase("GetSession");
    logind.answers["GetUser"] = [](const QDBusMessage&) -> QVariantList {
        return {QVariant::fromValue(QDBusObjectPath("/org/freedesktop/login1/user/_0"))};
    };
    logind.answers["Get"] = [&](const QDBusMessage&) -> QVariantList {
        logind.isSessionKnown = true;
        QDBusArgument display;
        display.beginStructure();
        display << QString("1") << QDBusObjectPath(ownPath);
        display.endStructure();
        return {QVariant::fromValue(QDBusVariant(QVariant::fromValue(display)))};
    };
    const auto listener = listen(logind);
    logind.hint(ownPath, false);
    EXPECT_EQ(eventsSoFar(logind), Events{unlocked});
}

TEST_F(SystemEventsTest, everyScreenSaverIsHeardAndOneUnlockIsOneEvent) {
    Logind logind(systemBus);
    for (const auto* name : {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver",
                             "org.cinnamon.ScreenSaver", "org.mate.ScreenSaver", "org.xfce.ScreenSaver"}) {
        events.clear();
        const auto listener = listen(logind);
        StandInService saver(sessionBus, name); // appears later than the program
        saver.emitSignal("/any/path", name, "ActiveChanged", {true});
        saver.emitSignal("/any/path", name, "ActiveChanged", {"false"});
        saver.emitSignal("/any/path", name, "ActiveChanged", {false});
        ASSERT_TRUE(waitUntil([&] { return !events.empty(); })) << name;
        saver.emitSignal("/another", name, "ActiveChanged", {false});
        logind.hint(ownPath, false);
        // The two buses are not ordered: a later signal on the same one shows that all have come.
        saver.emitSignal("/any/path", name, "ActiveChanged", {true});
        EXPECT_EQ(eventsSoFar(logind), Events{unlocked}) << name;
    }
}

TEST_F(SystemEventsTest, nobodyElseCanSendTheServicesSignals) {
    Logind logind(systemBus);
    StandInService saver(sessionBus, "org.gnome.ScreenSaver");
    StandInService liar(systemBus, "");
    StandInService sessionLiar(sessionBus, "");
    const auto listener = listen(logind);
    liar.emitSignal(managerPath, manager, "PrepareForSleep", {false});
    liar.emitSignal(ownPath, session, "Unlock", {});
    // Also when sent to the program directly, which no subscription could prevent.
    const auto program = logind.calls.front().service();
    liar.emitSignal(managerPath, manager, "PrepareForSleep", {false}, program);
    liar.emitSignal(ownPath, session, "Unlock", {}, program);
    EXPECT_EQ(eventsSoFar(logind), Events{});

    QString sessionProgram;
    const QStringList names = sessionLiar.connection().interface()->registeredServiceNames().value();
    for (const auto& name : names)
        if (name.startsWith(':') && name != saver.connection().baseService() &&
            name != sessionLiar.connection().baseService())
            sessionProgram = name;
    sessionLiar.emitSignal("/", "org.gnome.ScreenSaver", "ActiveChanged", {false});
    sessionLiar.emitSignal("/", "org.gnome.ScreenSaver", "ActiveChanged", {false}, sessionProgram);
    // The refusal of a call shows that everything before it has been handled.
    const QDBusPendingCallWatcher refusal(sessionLiar.connection().asyncCall(
        QDBusMessage::createMethodCall(sessionProgram, "/nothing", "no.Interface", "Nothing")));
    ASSERT_TRUE(waitUntil([&] { return refusal.isFinished(); }));
    EXPECT_EQ(eventsSoFar(logind), Events{});
}

TEST_F(SystemEventsTest, missingBusesAreNoTroubleAndRestartedOnesAreFoundAgain) {
    EXPECT_TRUE(listen({std::nullopt, std::nullopt}));
    EXPECT_TRUE(listen({"unix:path=/nonexistent/bus", "nonsense"}));

    systemBus.stop();
    const auto listener = listen();
    for (int i = 0; i < 2; ++i) {
        systemBus.start();
        for (int j = 0; j < 2; ++j) { // the service restarts while the bus goes on
            Logind logind(systemBus);
            ASSERT_TRUE(waitUntil([&] { return logind.isSessionKnown; })) << i << j;
            EXPECT_EQ(eventsSoFar(logind), Events{}) << i << j;
        }
        systemBus.stop();
    }
}

} // namespace
} // namespace tavrin

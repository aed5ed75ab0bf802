#include "platform/session_bus/session_events.h"
#include "private_bus.h"

#include <QDBusObjectPath>
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
    void restart() {
        connection().unregisterService("org.freedesktop.login1");
        connection().registerService("org.freedesktop.login1");
    }
    bool isSessionKnown = false; ///< the program has been told which one is its own
};

class SystemEventsTest : public testing::Test {
protected:
    SystemEventsTest() { testApplication(); }

    /// A listener with its connections.
    struct Listener {
        BusLink systemBus;
        BusLink sessionBus;
        SessionEvents events;

        Listener(const std::string& systemAddress, const std::string& sessionAddress,
                 SessionEvents::Handler handler)
            : systemBus(systemAddress), sessionBus(sessionAddress),
              events(systemBus, sessionBus, "1", std::move(handler)) {
            systemBus.open(std::chrono::seconds(5));
            sessionBus.open(std::chrono::seconds(5));
        }
    };
    std::unique_ptr<Listener> listen() {
        return std::make_unique<Listener>(systemBus.address(), sessionBus.address(),
                                          [this](SystemEvent event) { events.push_back(event); });
    }
    /// A listener that knows its session.
    std::unique_ptr<Listener> listen(Logind& logind) {
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
    StandInService liar(systemBus, "");
    const auto listener = listen(logind);
    liar.emitSignal(managerPath, manager, "PrepareForSleep", {false});
    liar.emitSignal(ownPath, session, "Unlock", {});
    // Also when sent to the program directly, which no subscription could prevent.
    const auto program = logind.calls.front().service();
    liar.emitSignal(managerPath, manager, "PrepareForSleep", {false}, program);
    liar.emitSignal(ownPath, session, "Unlock", {}, program);
    EXPECT_EQ(eventsSoFar(logind), Events{});
}

// A start soon after the session's begin is its login, once.
TEST_F(SystemEventsTest, aSessionThatHasJustBegunIsALogin) {
    Logind logind(systemBus);
    const struct {
        const char* situation;
        std::chrono::seconds age;
        bool isLocked;
        Events events;
    } cases[] = {{"begun just now", std::chrono::seconds(2), false, {unlocked}},
                 {"an old session", std::chrono::seconds(70), false, {}},
                 {"locked", std::chrono::seconds(2), true, {}}};
    for (const auto& [situation, age, isLocked, expected] : cases) {
        events.clear();
        const auto begin = std::chrono::steady_clock::now().time_since_epoch() - age;
        const QVariantMap properties{
            {"TimestampMonotonic",
             qulonglong(
                 std::chrono::microseconds(std::chrono::duration_cast<std::chrono::microseconds>(begin))
                     .count())},
            {"LockedHint", isLocked}};
        int reads = 0;
        logind.answers["GetAll"] = [&](const QDBusMessage&) -> QVariantList {
            ++reads;
            return {properties};
        };
        const auto listener = listen();
        ASSERT_TRUE(waitUntil([&] { return reads == 1; }));
        EXPECT_EQ(eventsSoFar(logind), expected) << situation;
        EXPECT_EQ(listener->events.isScreenLocked(), isLocked) << situation;
        logind.restart();
        ASSERT_TRUE(waitUntil([&] { return reads == 2; }));
        EXPECT_EQ(eventsSoFar(logind), Events{}) << situation << ": only once";
    }
}

TEST_F(SystemEventsTest, theScreenIsLockedAsLongAsSomebodySaysSo) {
    Logind logind(systemBus);
    const auto listener = listen(logind);
    const auto isLocked = [&] { return listener->events.isScreenLocked(); };
    logind.emitSignal(ownPath, session, "Lock", {});
    EXPECT_EQ(eventsSoFar(logind), Events{});
    EXPECT_FALSE(isLocked()) << "a request that nothing may follow";
    {
        StandInService saver(sessionBus, "org.gnome.ScreenSaver");
        saver.emitSignal("/", "org.gnome.ScreenSaver", "ActiveChanged", {true});
        EXPECT_TRUE(waitUntil(isLocked));
    }
    EXPECT_TRUE(waitUntil([&] { return !isLocked(); })) << "the screen saver is gone for good";
}

constexpr auto lockedHint = LockSource::sessionHint;
constexpr auto gnome = LockSource::gnomeScreenSaver;
constexpr auto xfce = LockSource::xfceScreenSaver;

struct Step {
    LockSource source;
    std::optional<int> unlocked = {}; ///< at this time in milliseconds; absent for a lock
};

TEST(UnlockMergerTest, oneUnlockCountsOnce) {
    const struct {
        const char* situation;
        std::vector<Step> steps;
        std::vector<int> counted; ///< the times of the unlocks that count
    } cases[] = {
        {"one source", {{gnome}, {gnome, 9000}}, {9000}},
        {"a source that tells of unlocks only", {{lockedHint, 0}, {lockedHint, 9000}}, {0, 9000}},
        {"late only once",
         {{gnome}, {lockedHint}, {lockedHint, 9000}, {gnome, 30000}, {gnome, 40000}},
         {9000, 40000}},
        {"within the window and after it", {{gnome, 0}, {xfce, 1999}, {lockedHint, 2000}}, {0, 2000}},
        {"a lock told after its end", {{gnome}, {gnome, 900}, {lockedHint}, {lockedHint, 960}}, {900}},
        {"locked again before the late one",
         {{gnome}, {lockedHint}, {lockedHint, 5000}, {lockedHint}, {gnome, 9000}, {lockedHint, 9010}},
         {5000, 9000}},
    };
    for (const auto& [situation, steps, counted] : cases) {
        UnlockMerger merger;
        std::vector<int> found;
        for (const auto& [source, time] : steps)
            if (!time)
                merger.locked(source);
            else if (merger.unlocked(source, UnlockMerger::TimePoint() + std::chrono::milliseconds(*time)))
                found.push_back(*time);
        EXPECT_EQ(found, counted) << situation;
    }
}

} // namespace
} // namespace tavrin

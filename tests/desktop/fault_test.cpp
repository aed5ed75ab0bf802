#include "desktop_test.h"
#include "support/desktop/embedding_panel.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <gmock/gmock.h>

#include <csignal>
#include <random>
#include <sys/socket.h>
#include <sys/un.h>

namespace tavrin::desktop {

namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;

const Rect display{0, 0, 1920, 1080};

/// How many restores a long test makes; by hand more, to find what happens once in a thousand times.
int restoreCount() {
    bool isNumber = false;
    const int count = qEnvironmentVariableIntValue("TAVRIN_TEST_RESTORES", &isNumber);
    return isNumber ? count : 40;
}

/// How often the process was woken so far, in all its threads.
int wakeUps(qint64 pid) {
    int count = 0;
    const QString tasks = QString("/proc/%1/task").arg(pid);
    for (const auto& task : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile status(tasks + "/" + task + "/status");
        if (status.open(QIODevice::ReadOnly))
            for (const auto& line : status.readAll().split('\n'))
                if (line.startsWith("voluntary_ctxt_switches:"))
                    count += line.mid(line.indexOf('\t')).trimmed().toInt();
    }
    return count;
}

/// Whatever the desktop does to the program, it goes on, or says why it cannot.
class FaultTest : public ProgramTest {
protected:
    void startAll() {
        begin();
        ASSERT_TRUE(program().start());
    }

    WindowHandle open(const std::string& title, const Rect& frame) {
        const auto window = client().open({.title = title, .frame = frame});
        EXPECT_TRUE(window) << title;
        return window.value_or(WindowHandle());
    }

    /// It still answers, and a window that strays comes back.
    void expectStillAtWork() {
        const auto window = client().open({.applicationClass = "Probe", .title = "probe"});
        const Rect place{700, 500, 420, 330};
        ASSERT_TRUE(window && windows().place(*window, place));
        ASSERT_TRUE(program().process().isRunning());
        ASSERT_TRUE(program().saveLayout("Probe"));
        ASSERT_TRUE(windows().place(*window, {60, 80, 300, 260}));
        ASSERT_TRUE(program().restoreLayout("Probe"));
        EXPECT_EQ(seen(*window), place);
    }

    std::string programLog() {
        QFile log(desktop().log("tavrin"));
        return log.open(QIODevice::ReadOnly) ? log.readAll().toStdString() : std::string();
    }
};

/// What only an X desktop has.
class XFaultTest : public FaultTest {};

TEST_F(FaultTest, WindowsThatComeAndGoDuringRestoresDoNoHarm) {
    startAll();
    std::vector<WindowHandle> open;
    for (int i = 0; i < 12; ++i)
        open.push_back(this->open("window " + std::to_string(i), {40.0 + 90 * i, 60.0 + 40 * i, 320, 240}));
    ASSERT_TRUE(program().saveLayout("Busy"));
    std::mt19937 random(7);
    for (int round = 0; round < restoreCount(); ++round) {
        for (const auto& window : open)
            windows().tell(window, {double(random() % 1200), double(random() % 700), 300, 200});
        // The menu's choice is on its way while the windows change.
        ASSERT_TRUE(tray().choose({"Busy"})) << round;
        for (int change = 0; change < 5; ++change) {
            auto& window = open[random() % open.size()];
            switch (random() % 3) {
            case 0:
                client().destroy(window);
                window = this->open("window " + std::to_string(random() % 12), {200, 200, 320, 240});
                break;
            case 1:
                client().retitle(window, "renamed " + std::to_string(round));
                break;
            default:
                client().vanishOnMove({window});
            }
        }
    }
    expectStillAtWork();
}

TEST_F(FaultTest, TitlesOfEveryKindAreSavedAndRestored) {
    startAll();
    const std::vector<std::string> titles{
        std::string(lacks(Ability::longTitles) ? 2000 : 1 << 20, 'm'), // sway 1.10 dies of it
        "invalid \xff\xfe\xc3( \xed\xa0\x80 text",
        "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d \xe2\x80\xae reversed \xe2\x80\xac",
        "bell\a escape\x1b[31m delete\x7f",
        "{\"payload\": \"\\u0000\"}",
        "a\xcc\x81\xcc\x81\xcc\x81\xcc\x81 \xf0\x9f\x91\xa9\xe2\x80\x8d\xf0\x9f\x91\xa9",
    };
    std::vector<WindowHandle> all;
    std::vector<Rect> saved;
    for (std::size_t i = 0; i < titles.size(); ++i) {
        const Rect place{50.0 + 250 * double(i), 100.0 + 60 * double(i), 240, 180};
        all.push_back(open("plain", place));
        ASSERT_TRUE(client().retitle(all.back(), titles[i]));
        ASSERT_TRUE(windows().place(all.back(), place));
        saved.push_back(place);
    }
    ASSERT_TRUE(program().saveLayout("Odd"));
    for (const auto& window : all)
        ASSERT_TRUE(windows().place(window, {300, 300, 300, 200}));
    ASSERT_TRUE(program().restoreLayout("Odd"));
    // A window manager may need seconds to draw a title of a megabyte.
    for (std::size_t i = 0; i < all.size(); ++i)
        EXPECT_TRUE(waitUntil([&] { return seen(all[i]) == saved[i]; })) << "title " << i;
    for (const QJsonValue entry : program().payload("layouts.json")[0]["entries"].toArray())
        EXPECT_LE(entry["windowTitle"].toString().toUtf8().size(), 1024);
}

TEST_F(XFaultTest, AHungWindowManagerHoldsUpTheProgramForTwoSecondsAtMost) {
    startAll();
    std::vector<WindowHandle> all;
    for (int i = 0; i < 60; ++i)
        all.push_back(open("window " + std::to_string(i), {10.0 + 20 * i, 30.0 + 10 * i, 300, 200}));
    const auto saved = seenAll(all);
    ASSERT_TRUE(program().saveLayout("Many"));
    for (const auto& window : all)
        windows().tell(window, {400, 300, 250, 200});
    ASSERT_TRUE(waitUntil([&] { return seen(all.back()).x == 400; }));
    const auto items = tray().openMenu();
    ASSERT_TRUE(items);
    xDesktop().hangWindowManager();
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_TRUE(program().restoreLayout("Many"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
    xDesktop().resumeWindowManager();
    EXPECT_TRUE(waitUntil([&] { return seenAll(all) == saved; })) << "asked all the same";
    expectStillAtWork();
}

TEST_F(FaultTest, KeysTypedElsewhereWakeNobodyWithoutAShortcut) {
    startAll();
    open("editor", {100, 100, 400, 300});
    const auto type = [&](int count) {
        for (int i = 0; i < count; ++i) {
            desktop().keyboard().type("a");
            desktop().x().sync();
        }
    };
    type(100); // it comes to rest meanwhile
    const int before = wakeUps(program().process().pid());
    type(400);
    EXPECT_LT(wakeUps(program().process().pid()) - before, 200);
}

TEST_F(XFaultTest, OnAnUnsupportedDesktopItRunsWithoutThePermission) {
    begin();
    auto environment = desktop().environment();
    environment.remove("DISPLAY");
    environment.insert("WAYLAND_DISPLAY", "wayland-nowhere");
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    Process program;
    ASSERT_TRUE(program.start(qEnvironmentVariable("TAVRIN_PROGRAM", TAVRIN_PROGRAM_PATH), {}, environment,
                              desktop().log("tavrin")));
    ASSERT_TRUE(tray().waitForItem());
    const auto items = tray().openMenu();
    ASSERT_TRUE(items);
    EXPECT_THAT(describe(*items), HasSubstr("Accessibility"));
    EXPECT_TRUE(program.isRunning());
}

TEST_F(XFaultTest, AnotherWindowManagerTakesOverDuringUse) {
    startAll();
    const Rect place{300, 200, 500, 400};
    const auto window = open("editor", place);
    ASSERT_TRUE(windows().place(window, place));
    ASSERT_TRUE(program().saveLayout("Work"));
    xDesktop().stopWindowManager();
    ASSERT_TRUE(waitUntil([&] { return program().menu().find("Accessibility") != std::string::npos; }));
    ASSERT_TRUE(xDesktop().startWindowManager("xfwm4") && xDesktop().windows().waitUntilManaged(window));
    ASSERT_TRUE(waitUntil([&] { return program().offers("Work"); }));
    ASSERT_TRUE(windows().place(window, {50, 60, 300, 250}));
    ASSERT_TRUE(program().restoreLayout("Work"));
    EXPECT_EQ(seen(window), place);
}

TEST_F(FaultTest, ALostServerEndsTheProgramWithAMessage) {
    // The toolkit may notice first and end the process where it stands; what it holds then is no leak.
    const auto options = qgetenv("ASAN_OPTIONS");
    qputenv("ASAN_OPTIONS", options + ":detect_leaks=0");
    startAll();
    qputenv("ASAN_OPTIONS", options);
    open("editor", {100, 100, 300, 200});
    ASSERT_TRUE(program().menu().size() > 0);
    desktop().crash();
    const auto status = program().process().waitForExit();
    ASSERT_TRUE(status) << "crashed, or went on without a screen";
    EXPECT_NE(*status, 0);
    // On Wayland the toolkit ends the process, with words of its own.
    EXPECT_THAT(programLog(), AnyOf(HasSubstr("tavrin: the connection to the window system is lost"),
                                    HasSubstr("Did the Wayland compositor die?")));
}

// Whatever is wrong with the buses: the program starts none, its icon is soon there, it runs once, and
// sleeps.
TEST_F(XFaultTest, WithoutASessionBusItRunsOnAndSaysSo) {
    begin({.hasTray = false});
    QTemporaryDir folder;
    const auto silentPath = folder.filePath("silent");
    const int silent = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un place{AF_UNIX, {}};
    silentPath.toStdString().copy(place.sun_path, sizeof place.sun_path - 1);
    ASSERT_EQ(::bind(silent, reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
    ASSERT_EQ(::listen(silent, 100), 0);
    QFile launcher(folder.filePath("dbus-launch"));
    ASSERT_TRUE(launcher.open(QIODevice::WriteOnly));
    launcher.write(QString("#!/bin/sh\ntouch '%1'\n").arg(folder.filePath("started")).toUtf8());
    launcher.close();
    launcher.setPermissions(QFile::ReadOwner | QFile::ExeOwner);

    const auto command = "exec " + qEnvironmentVariable("TAVRIN_PROGRAM", TAVRIN_PROGRAM_PATH) + " 2>&1";
    for (const auto& address : {QString(), "unix:path=" + silentPath, QString("unix:path=/nowhere/bus")}) {
        auto environment = desktop().environment();
        environment.insert("PATH", folder.path() + ":" + environment.value("PATH"));
        // Qt 6.8 does not free everything when the program ends before its event loop.
        environment.insert("ASAN_OPTIONS", environment.value("ASAN_OPTIONS") + ":detect_leaks=0");
        environment.insert("DBUS_SYSTEM_BUS_ADDRESS", address.isEmpty() ? "unix:path=/nowhere/bus" : address);
        if (address.isEmpty())
            environment.remove("DBUS_SESSION_BUS_ADDRESS");
        else
            environment.insert("DBUS_SESSION_BUS_ADDRESS", address);
        QElapsedTimer sinceStart;
        sinceStart.start();
        Process program;
        ASSERT_TRUE(program.start("sh", {"-c", command}, environment, desktop().log("tavrin"),
                                  Process::Output::readHere));
        std::optional<std::string> line;
        do
            line = program.readLine();
        while (line && line->find("no status area") == std::string::npos);
        ASSERT_TRUE(line) << "said nothing: " << address.toStdString();
        if (address.isEmpty()) {
            EXPECT_TRUE(windows().waitForTitle("Tavrin Settings")) << "the first start shows that it runs";
        }
        EmbeddingPanel panel(xDesktop().server().display().toStdString());
        EXPECT_TRUE(panel.appear() && panel.waitForIcon()) << address.toStdString();
        if (!address.isEmpty()) { // much less than libdbus would wait
            EXPECT_LT(sinceStart.elapsed(), 10'000) << address.toStdString();
        }
        Process second;
        ASSERT_TRUE(second.start("sh", {"-c", command}, environment, desktop().log("second")));
        EXPECT_EQ(second.waitForExit(), 0) << address.toStdString();
        EXPECT_TRUE(program.isRunning());
        EXPECT_FALSE(QFile::exists(folder.filePath("started"))) << "a bus was started";
        if (address.contains("nowhere")) {
            EXPECT_FALSE(windows().find("Tavrin Settings")) << "only once";
            const auto wokenWithin = [&](std::chrono::seconds time) {
                const int before = wakeUps(program.pid());
                waitUntil([] { return false; }, time);
                return wakeUps(program.pid()) - before;
            };
            for (int i = 0; i < 3 && wokenWithin(std::chrono::seconds(6)) > 0; ++i) {
            } // until it has come to rest
            EXPECT_LE(wokenWithin(std::chrono::seconds(12)), 1);
        }
    }
    ::close(silent);
}

TEST_F(FaultTest, ASessionBusThatEndsAndComesBackHasItAgain) {
    startAll();
    for (int i = 0; i < 2; ++i) {
        desktop().sessionBus().stop();
        EXPECT_FALSE(
            waitUntil([&] { return !program().process().isRunning(); }, std::chrono::milliseconds(1000)))
            << programLog();
        ASSERT_TRUE(desktop().sessionBus().restart());
        Tray tray(desktop().sessionBus().connection());
        ASSERT_TRUE(tray.appear());
        EXPECT_TRUE(tray.waitForItem());
        const auto menu = tray.openMenu();
        EXPECT_TRUE(menu && describe(*menu).find("Quit Tavrin") != std::string::npos);
        EXPECT_TRUE(program().waitUntilRegistered());
    }
}

// Whatever a window does while nobody asks and while the program is at work, little of it is read, and none
// kept.
TEST_F(XFaultTest, AFloodOfChangesCostsNeitherTimeNorMemory) {
    startAll();
    const auto flooding = desktop().startClient();
    const auto loud = flooding->open({.applicationClass = "Loud", .title = "loud"});
    const auto window = open("editor", {300, 200, 500, 400});
    ASSERT_TRUE(loud && program().saveLayout("Work"));
    ASSERT_TRUE(windows().place(window, {50, 60, 300, 250}));
    xDesktop().hangWindowManager();
    const auto flood = [&] { flooding->startFlood(*loud, "_NET_WM_NAME", 300'000); };
    ASSERT_TRUE(program().offers("Work"));
    const auto before = program().usage();
    for (int round = 0; round < 3; ++round) {
        flood();
        ASSERT_TRUE(flooding->endFlood());
    }
    flood();
    ASSERT_TRUE(program().offers("Work"));
    EXPECT_TRUE(program().restoreLayout("Work")) << "no outcome shows";
    ASSERT_TRUE(flooding->endFlood());
    const auto after = program().usage();
    EXPECT_LT(after.peakKilobytes - before.peakKilobytes, 16 * 1024);
    EXPECT_LT(after.seconds - before.seconds, 2.0);
}

TEST_F(FaultTest, AStormOfDisplayChangesGivesOneSequence) {
    startAll();
    const Rect place{300, 200, 500, 400};
    const auto window = open("editor", place);
    ASSERT_TRUE(windows().place(window, place));
    ASSERT_TRUE(program().saveLayout("Work") && program().makeDefault("Work"));
    ASSERT_TRUE(windows().place(window, {50, 60, 300, 250}));
    ASSERT_TRUE(program().waitForRest());
    const int before = tray().iconChanges();
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(outputs().plug(1, {1920, 0, 1280, 1024}));
        ASSERT_TRUE(outputs().unplug(1));
    }
    EXPECT_TRUE(program().waitForFeedback());
    EXPECT_TRUE(program().waitForRest());
    EXPECT_EQ(seen(window), place);
    EXPECT_FALSE(
        waitUntil([&] { return tray().iconChanges() - before > 2; }, std::chrono::milliseconds(6000)));
}

} // namespace

} // namespace tavrin::desktop

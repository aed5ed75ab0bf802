#include "desktop_test.h"

#include <QDBusConnectionInterface>
#include <QDBusInterface>

namespace tavrin::desktop {

namespace {

class FixtureTest : public DesktopTest {};

// What is drawn around a window, and what the window draws around itself, both count as a person sees them.
TEST_F(FixtureTest, WindowsAppearWhereAskedAndAreMeasuredAsSeen) {
    begin();
    const auto client = desktop().startClient();

    const auto plain = client->open({.title = "plain", .frame = {200, 150, 400, 300}});
    ASSERT_TRUE(plain);
    EXPECT_EQ(seen(*plain), xDesktop().windows().outermost(*plain));
    EXPECT_GT(seen(*plain).height, 300) << "the title bar belongs to the frame";

    const auto shadowed = client->open({.title = "shadowed",
                                        .frame = {300, 200, 452, 352},
                                        .isDecorated = false,
                                        .shadow = {26, 26, 23, 29}});
    ASSERT_TRUE(shadowed);
    EXPECT_EQ(seen(*shadowed), (Rect{326, 223, 400, 300}));

    for (const auto& window : {*plain, *shadowed}) {
        EXPECT_TRUE(xDesktop().windows().place(window, {700, 400, 520, 410}));
        EXPECT_EQ(seen(window), (Rect{700, 400, 520, 410}));
    }
    EXPECT_EQ(xDesktop().windows().outermost(*plain), (Rect{700, 400, 520, 410}));
}

TEST_F(FixtureTest, RequestedPropertiesReachTheServer) {
    begin();
    const auto client = desktop().startClient();
    const auto window = client->open({.applicationClass = "Editor",
                                      .title = "first",
                                      .type = "DIALOG",
                                      .increment = {9, 18},
                                      .pid = 4321,
                                      .applicationID = "org.example.Editor"});
    ASSERT_TRUE(window);
    auto& x = desktop().x();
    EXPECT_EQ(x.text(*window, "WM_CLASS"), std::string("Editor\0Editor\0", 14));
    EXPECT_EQ(x.text(*window, "_GTK_APPLICATION_ID"), "org.example.Editor");
    EXPECT_EQ(xDesktop().windows().processOf(*window), 4321U);
    EXPECT_EQ(x.cardinals(*window, "_NET_WM_WINDOW_TYPE"), std::vector{x.atom("_NET_WM_WINDOW_TYPE_DIALOG")});
    EXPECT_TRUE(client->retitle(*window, "second"));
    EXPECT_EQ(xDesktop().windows().find("second"), window);

    const auto hints = x.cardinals(*window, "WM_NORMAL_HINTS");
    ASSERT_GT(hints.size(), 10U);
    EXPECT_EQ(std::pair(hints[9], hints[10]), std::pair(9U, 18U)) << "the size steps";

    EXPECT_TRUE(xDesktop().windows().maximise(*window));
    EXPECT_TRUE(client->destroy(*window));
    EXPECT_TRUE(waitUntil([&] { return xDesktop().windows().managed().empty(); }));
}

TEST_F(FixtureTest, MonitorsComeAndGoWithTheirIdentity) {
    begin({.displays = {{0, 0, 1920, 1080}, {1920, 0, 1280, 1024}}});
    EXPECT_EQ(xDesktop().outputs().areas(), (std::vector<Rect>{{0, 0, 1920, 1080}, {1920, 0, 1280, 1024}}));
    if (xDesktop().server().kind() == XServer::Kind::dummyOutputs) {
        const auto block = xDesktop().outputs().edid(1);
        ASSERT_EQ(block.size(), 128U);
        EXPECT_EQ(block[12], 2) << "the serial number";
    }

    ASSERT_TRUE(xDesktop().outputs().unplug(1));
    EXPECT_EQ(xDesktop().outputs().areas(), (std::vector<Rect>{{0, 0, 1920, 1080}}));
    ASSERT_TRUE(xDesktop().outputs().plug(2, {1920, 0, 2560, 1440}));
    ASSERT_TRUE(xDesktop().outputs().plug(0, {0, 0, 1280, 720}));
    EXPECT_EQ(xDesktop().outputs().areas(), (std::vector<Rect>{{0, 0, 1280, 720}, {1920, 0, 2560, 1440}}));
    EXPECT_TRUE(xDesktop().outputs().edid(2).empty());
}

TEST_F(FixtureTest, WindowsThatVanishAndHangDoSo) {
    begin();
    const auto client = desktop().startClient();
    const auto first = client->open({.title = "first"});
    const auto second = client->open({.title = "second"});
    ASSERT_TRUE(first && second);
    ASSERT_TRUE(client->vanishOnMove({*first, *second}));
    ASSERT_TRUE(xDesktop().windows().place(*second, {600, 500, 400, 300}));
    EXPECT_TRUE(waitUntil([&] { return !xDesktop().windows().find("first"); }));
    EXPECT_TRUE(xDesktop().windows().find("second"));

    client->hang();
    EXPECT_TRUE(xDesktop().windows().place(*second, {100, 100, 500, 400}))
        << "the window manager moves it all the same";
}

TEST_F(FixtureTest, MovesAreCountedButRaisesAreNot) {
    begin();
    const auto client = desktop().startClient();
    const auto lower = client->open({.title = "lower", .frame = {100, 100, 300, 200}});
    const auto upper = client->open({.title = "upper", .frame = {150, 150, 300, 200}});
    ASSERT_TRUE(lower && upper);
    desktop().x().takeMoves();
    xDesktop().windows().activate(*lower);
    ASSERT_TRUE(waitUntil([&] { return WindowHandle(xDesktop().windows().managed().back()) == *lower; }));
    EXPECT_TRUE(desktop().x().takeMoves().empty());
    ASSERT_TRUE(xDesktop().windows().place(*lower, {400, 400, 320, 260}));
    EXPECT_FALSE(desktop().x().takeMoves().empty());
}

TEST_F(FixtureTest, TypedKeysReachTheFocusedTerminal) {
    begin();
    const QString file = desktop().home() + "/typed";
    const auto terminal = desktop().startProgram(
        "xterm", {"-T", "typist", "-e", "sh", "-c", "read line; printf %s \"$line\" > " + file});
    ASSERT_TRUE(terminal);
    const auto window = xDesktop().windows().waitForTitle("typist");
    ASSERT_TRUE(window);
    xDesktop().windows().activate(*window);
    ASSERT_TRUE(waitUntil([&] { return xDesktop().windows().processWithKeyboard() == terminal->pid(); }));
    EXPECT_TRUE(desktop().keyboard().type("Two Words, 2!"));
    EXPECT_TRUE(desktop().keyboard().press(Keyboard::returnKey));
    ASSERT_EQ(terminal->waitForExit(), 0);
    QFile typed(file);
    ASSERT_TRUE(typed.open(QIODevice::ReadOnly));
    EXPECT_EQ(typed.readAll().toStdString(), "Two Words, 2!");
}

// Another program asks as the toolkits do: by introspection, over its own connection.
TEST_F(FixtureTest, TheTrayIntrospectsAndComesAndGoes) {
    begin({.hasTray = false});
    auto other = QDBusConnection::connectToBus(desktop().sessionBus().address(), "other");
    const QString name = "org.kde.StatusNotifierWatcher";
    EXPECT_FALSE(other.interface()->isServiceRegistered(name));
    ASSERT_TRUE(tray().appear());
    const auto ask = [&](const QString& interface, const QString& method, const QVariantList& arguments) {
        auto call = QDBusMessage::createMethodCall(name, "/StatusNotifierWatcher", interface, method);
        call.setArguments(arguments);
        return callAndServe(other, call).arguments();
    };
    const auto description = ask("org.freedesktop.DBus.Introspectable", "Introspect", {});
    ASSERT_FALSE(description.isEmpty());
    for (const auto* member : {"IsStatusNotifierHostRegistered", "RegisterStatusNotifierItem"})
        EXPECT_TRUE(description.first().toString().contains(member)) << member;
    EXPECT_EQ(ask("org.freedesktop.DBus.Properties", "Get", {name, "IsStatusNotifierHostRegistered"})
                  .value(0)
                  .value<QDBusVariant>()
                  .variant(),
              QVariant(true));

    ask(name, "RegisterStatusNotifierItem", {"/Item"});
    EXPECT_TRUE(tray().waitForItem());
    QDBusConnection::disconnectFromBus("other");
    other = QDBusConnection("none");
    EXPECT_TRUE(waitUntil([&] { return !tray().hasItem(); })) << "an item goes with its program";
}

} // namespace

} // namespace tavrin::desktop

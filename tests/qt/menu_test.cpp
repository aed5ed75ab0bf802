#include "platform/qt/bus_menu.h"
#include "platform/qt/menu_text.h"
#include "platform/qt/status_menu.h"
#include "qt/qt_application.h"
#include "session_bus/private_bus.h"
#include "ui/qt/controls/menu_style.h"

#include <QDBusMessage>
#include <QKeyEvent>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

const Uuid first = *Uuid::parse("11111111-1111-1111-1111-111111111111");
const Uuid second = *Uuid::parse("22222222-2222-2222-2222-222222222222");

TEST(MenuTextTest, MakesTitlesFitForAMenu) {
    const QString fit(longestMenuTitle, 'x');
    const QString elided =
        'a' + QString(longestMenuTitle / 2 - 1, 'x') + "…" + QString(longestMenuTitle / 2 - 2, 'x') + 'b';
    // No character is cut in two, however many parts it has.
    const QString family = "👩‍👩‍👧";
    const QString half = family.repeated(longestMenuTitle / 2 - 1);
    const QString families = half + family + "…" + half;
    const struct {
        std::string title;
        QString shown;
        QString action;
        QString label;
    } cases[] = {
        {"Work & Play_1", "Work & Play_1", "Work && Play_1", "Work & Play__1"},
        {"two\nlines\tand\x01more", "two lines and more", "two lines and more", "two lines and more"},
        {"paragraph\u2029end", "paragraph end", "paragraph end", "paragraph end"},
        {"turned \u202Ereversed\u2066", "turned reversed", "turned reversed", "turned reversed"},
        {"bad \xff byte", "bad \uFFFD byte", "bad \uFFFD byte", "bad \uFFFD byte"},
        {fit.toStdString(), fit, fit, fit},
        {"a" + fit.toStdString() + "b", elided, elided, elided},
        {family.repeated(longestMenuTitle + 1).toStdString(), families, families, families},
    };
    for (const auto& [title, shown, action, label] : cases) {
        EXPECT_EQ(menuTitle(title), shown) << title;
        EXPECT_EQ(actionText(title), action) << title;
        EXPECT_EQ(busMenuLabel(title), label) << title;
    }
}

TEST(MenuTextTest, NamesKeysAsPrintedAndAsPanelsReadThem) {
    const auto controlOption = ModifierSet::control | ModifierSet::option;
    const auto all = ModifierSet::significant;
    const struct {
        KeyEquivalent equivalent;
        QString text;
        QStringList characters;
        QStringList keysyms;
    } cases[] = {
        {{"q", {}}, "q", {"q"}, {"q"}},
        {{",", {}}, ",", {","}, {"comma"}},
        {{"R", controlOption}, "⌃⌥R", {"Control", "Alt", "R"}, {"Control", "Alt", "R"}},
        {{"←", all},
         "⌃⌥⇧⌘←",
         {"Control", "Alt", "Shift", "Super", "Left"},
         {"Control", "Alt", "Shift", "Super", "Left"}},
        {{"Delete", ModifierSet::control}, "⌃Delete", {"Control", "Backspace"}, {"Control", "BackSpace"}},
        {{"-", ModifierSet::control}, "⌃-", {"Control", "minus"}, {"Control", "minus"}},
        {{"Key42", ModifierSet::control}, "⌃Key42", {}, {}},
        {{"", ModifierSet::control}, "⌃", {}, {}},
    };
    for (const auto& [equivalent, text, characters, keysyms] : cases) {
        EXPECT_EQ(keyEquivalentText(equivalent), text);
        EXPECT_EQ(busMenuShortcut(equivalent, KeyNaming::characters), characters);
        EXPECT_EQ(busMenuShortcut(equivalent, KeyNaming::keysyms), keysyms);
    }
}

TEST(BusMenuTreeTest, NumbersBelongToOneItemForever) {
    const auto save = MenuItem::command("Save Layout…", MenuAction::saveCurrentLayout);
    const auto home = MenuItem::command("Home", MenuAction::restoreLayout, first);
    const auto sameName = MenuItem::command("Home", MenuAction::restoreLayout, second);
    BusMenuTree tree;
    tree.replace({save, MenuItem::separator(), MenuItem::withSubmenu("Other", {home}), home, home, sameName});
    const auto before = tree.ids();
    EXPECT_EQ(before, (std::vector{1, 2, 3, 4, 5, 6, 7}));

    tree.replace({MenuItem::withSubmenu("Other", {home}), sameName, save});
    EXPECT_EQ(tree.ids(), (std::vector{3, 4, 7, 1})) << "moved items keep their numbers";

    tree.replace({home, MenuItem::label("Home")});
    EXPECT_EQ(tree.ids(), (std::vector{8, 9})) << "no number is used again";
    EXPECT_EQ(tree.item(7), nullptr);
    EXPECT_FALSE(tree.contains(1));
    EXPECT_TRUE(tree.contains(BusMenuTree::root));
}

struct BusMenuTest : testing::Test {
    BusMenuTest() {
        menu.setMenu({MenuItem::label("Label"), MenuItem::command("Old", MenuAction::restoreLayout, first)});
    }
    void click(int id) { menu.Event(id, "clicked", QDBusVariant(QString()), 0); }

    int openings = 0;
    std::vector<std::string> chosen;
    std::optional<MenuModel> replacement;
    BusMenu menu{[this] {
                     ++openings;
                     if (replacement)
                         menu.setMenu(*replacement);
                 },
                 [this](const MenuItem& item) { chosen.push_back(item.title); }};
};

// Any program on the bus may ask, for anything.
TEST_F(BusMenuTest, HugeQuestionsGetSmallAnswers) {
    const QList<int> equal(1'000'000, 2);
    EXPECT_EQ(menu.GetGroupProperties(equal, {}).size(), 1);
    QStringList names(100'000, "nothing");
    names.prepend("label");
    const auto items = menu.GetGroupProperties(equal, names);
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items[0].properties, (QVariantMap{{"label", "Old"}}));
    QList<int> unknown;
    EXPECT_EQ(menu.AboutToShowGroup(QList<int>(100'000, BusMenuTree::root), unknown), QList<int>());
    EXPECT_EQ(openings, 1);
    menu.AboutToShowGroup(QList<int>(100'000, 1234), unknown);
    EXPECT_LE(unknown.size(), 100);
    // The bus decodes an argument only as far as its type reads it.
    const PrivateBus bus;
    StandInService panel(bus, "");
    auto program = QDBusConnection::connectToBus(QString::fromStdString(bus.address()), "program");
    ASSERT_TRUE(program.registerObject("/menu", &menu, QDBusConnection::ExportScriptableSlots));
    auto events = QDBusMessage::createMethodCall(program.baseService(), "/menu", "com.canonical.dbusmenu",
                                                 "EventGroup");
    events << QVariant::fromValue(
        BusMenuEvents{QList<BusMenuEvent>(100'000, {2, "clicked", QDBusVariant(QString()), 0})});
    const auto answer = panel.connection().call(events, QDBus::BlockWithGui);
    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << answer.errorMessage().toStdString();
    QDBusConnection::disconnectFromBus("program");
    runEventLoopOnce();
    EXPECT_LE(chosen.size(), 100u);
}

TEST_F(BusMenuTest, ClickHitsWhatWasShownOrNothing) {
    click(2);
    EXPECT_TRUE(chosen.empty()) << "the panel waits for the answer";
    runEventLoopOnce();
    click(1);
    runEventLoopOnce();
    EXPECT_EQ(chosen, (std::vector<std::string>{"Old"})) << "labels cannot be chosen";

    click(2);
    menu.setMenu({MenuItem::command("New", MenuAction::restoreLayout, second)});
    click(1);
    click(99);
    runEventLoopOnce();
    EXPECT_EQ(chosen.size(), 1u) << "the item went while the click was on its way";

    QList<int> unknown = menu.EventGroup(
        {{{3, "clicked", QDBusVariant(QString()), 0}, {99, "clicked", QDBusVariant(QString()), 0}}});
    runEventLoopOnce();
    EXPECT_EQ(chosen.back(), "New");
    EXPECT_EQ(unknown, QList<int>{99});
}

TEST(StatusMenuTest, LettersChooseItemsOfTheOpenMenuOnly) {
    std::vector<MenuAction> chosen;
    StatusMenu menu([&](const MenuItem& item) { chosen.push_back(item.action); });
    const auto comma = KeyEquivalent{",", {}};
    menu.setMenu({MenuItem::command("Open", MenuAction::openAccessibilitySettings, {}, comma),
                  MenuItem::command("Restore & more", MenuAction::restoreLayout, first,
                                    KeyEquivalent{"R", ModifierSet::control | ModifierSet::option}),
                  MenuItem::command("Settings…", MenuAction::openSettings, {}, comma),
                  MenuItem::command("Quit", MenuAction::quit, {}, KeyEquivalent{"q", {}})});
    for (const QAction* action : menu.actions())
        EXPECT_TRUE(action->shortcut().isEmpty()) << "a shortcut would fire in text fields";
    EXPECT_EQ(menu.actions()[1]->text(), "Restore && more\t⌃⌥R");

    const auto press = [&](int key, Qt::KeyboardModifiers modifiers, const QString& text) {
        menu.popup(QPoint(0, 0));
        QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
        QCoreApplication::sendEvent(&menu, &event);
        runEventLoopOnce();
    };
    press(Qt::Key_Q, Qt::ControlModifier, "q");
    press(Qt::Key_R, Qt::ControlModifier | Qt::AltModifier, "r");
    press(Qt::Key_R, Qt::NoModifier, "R");
    EXPECT_TRUE(chosen.empty());
    EXPECT_TRUE(menu.isVisible());
    press(Qt::Key_Comma, Qt::NoModifier, ",");
    EXPECT_EQ(chosen, (std::vector{MenuAction::openAccessibilitySettings})) << "the upper one of two";
    EXPECT_FALSE(menu.isVisible());
    press(Qt::Key_Q, Qt::NoModifier, "Q");
    EXPECT_EQ(chosen.back(), MenuAction::quit) << "with the capitals lock on";
}

} // namespace
} // namespace tavrin

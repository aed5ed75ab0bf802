#include "platform/qt/panel_icon.h"
#include "qt/qt_application.h"
#include "ui/qt/controls/labels.h"
#include "ui/qt/controls/question_sheet.h"
#include "ui/qt/settings_window.h"
#include "ui/settings_fixture.h"

#include <QClipboard>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>
#include <QWheelEvent>

#include <set>

namespace tavrin {
namespace {

constexpr auto control = ModifierSet::control, option = ModifierSet::option;
constexpr std::uint16_t keyR = 15;

class SettingsWindowTest : public ::testing::Test, public testing::SettingsFixture {
protected:
    QtSettingsWindow surface{collaborators};
    QWidget* window = nullptr;

    SettingsWindowTest() { registerResources(); }

    void show(SettingsPane pane,
              SettingsWindowSurface::ResetNotice notice = SettingsWindowSurface::ResetNotice::hidden) {
        surface.show(pane, notice);
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->windowTitle() == "Tavrin Settings")
                window = widget;
        runEventLoopOnce();
    }

    template <class Widget = QWidget>
    std::vector<Widget*> shown() {
        std::vector<Widget*> widgets;
        for (QWidget* widget : window->findChildren<QWidget*>())
            if (auto* wanted = dynamic_cast<Widget*>(widget); wanted && widget->isVisible())
                widgets.push_back(wanted);
        return widgets;
    }
    /// The control that a screen reader announces by that name; null when it is not shown.
    template <class Widget = QAbstractButton>
    Widget* named(const QString& name) {
        for (Widget* widget : shown<Widget>())
            if (widget->accessibleName() == name)
                return widget;
        ADD_FAILURE() << name.toStdString() << " is not shown";
        return nullptr;
    }
    QAbstractButton* button(const QString& text) {
        for (auto* widget : shown<QAbstractButton>())
            if (widget->text() == text)
                return widget;
        ADD_FAILURE() << text.toStdString() << " is not shown";
        return nullptr;
    }
    void click(QAbstractButton* target) {
        if (target)
            target->click();
        runEventLoopOnce();
    }
    bool says(const QString& text) {
        for (const auto* label : shown<QLabel>())
            if (label->text() == text)
                return true;
        return false;
    }
    /// Chooses an entry of the menu behind a button.
    void choose(const QString& menuOf, const QString& text) {
        auto* menuButton = named<QToolButton>(menuOf);
        for (QAction* action : menuButton ? menuButton->menu()->actions() : QList<QAction*>())
            if (action->text() == text)
                action->trigger();
        runEventLoopOnce();
    }
    void press(QWidget* target, int key) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(target, &event);
        runEventLoopOnce();
    }
    QLineEdit* nameField() {
        for (auto* field : shown<QLineEdit>())
            if (field->accessibleName().startsWith("Name of"))
                return field;
        return nullptr;
    }
    /// What a screen reader calls the control.
    static std::string spokenName(const QWidget& widget) {
        const auto* asButton = dynamic_cast<const QAbstractButton*>(&widget);
        const QString name = widget.accessibleName();
        return (name.isEmpty() && asButton ? asButton->text() : name).toStdString();
    }
    static void checkControl(QWidget& widget) {
        const auto* asButton = dynamic_cast<QAbstractButton*>(&widget);
        const auto name = spokenName(widget);
        if (widget.focusPolicy() & Qt::TabFocus) {
            EXPECT_FALSE(name.empty()) << widget.metaObject()->className();
        }
        if (asButton || dynamic_cast<QComboBox*>(&widget)) {
            EXPECT_GE(widget.width(), widget.minimumSizeHint().width()) << name;
        }
    }
    QListWidget& sideList() { return *window->findChild<QListWidget*>(); }
};

TEST_F(SettingsWindowTest, LeadsToEveryPaneByItsList) {
    show(SettingsPane::shortcuts);
    EXPECT_EQ(sideList().currentRow(), 2);
    ASSERT_EQ(sideList().count(), 5);
    for (int round = 0; round < 2; ++round)
        for (int row = 0; row < sideList().count(); ++row) {
            sideList().setCurrentRow(row);
            runEventLoopOnce();
            EXPECT_TRUE(says(sideList().item(row)->text()));
        }
    show(SettingsPane::layouts);
    EXPECT_EQ(sideList().currentRow(), 0) << "an open window goes to the pane as well";
}

TEST_F(SettingsWindowTest, LetsGoOfItsContentWhenClosed) {
    int closed = 0;
    surface.setOnClose([&] { ++closed; });
    show(SettingsPane::shortcuts);
    const QString notice = "Beta data was reset on this launch. Profiles, layouts, and settings start fresh.";
    EXPECT_FALSE(says(notice));
    click(named("Shortcut of Auto-detect"));
    EXPECT_TRUE(keys.local);
    window->close();
    EXPECT_EQ(closed, 1);
    EXPECT_FALSE(keys.local) << "nothing is recorded any more";
    show(SettingsPane::advanced, SettingsWindowSurface::ResetNotice::shown);
    EXPECT_TRUE(says(notice));
}

// Long names, the smallest window, a large font.
TEST_F(SettingsWindowTest, NamesEveryControlAndCutsNothingOff) {
    const QFont usual = QApplication::font();
    const std::string longWord(50, 'W');
    ASSERT_TRUE(store.renameLayout(workID, longWord));
    ASSERT_TRUE(store.renameProfile(deskID, longWord));
    ASSERT_TRUE(settings.save({.excludedBundleIDs = {longWord + "." + longWord}}));
    shortcuts.setLayoutShortcut(KeyCombo{keyR, control | option}, workID);
    list.reload();
    for (const double factor : {1.0, 1.6}) {
        QFont font = usual;
        font.setPointSizeF(usual.pointSizeF() * factor);
        QApplication::setFont(font);
        for (int row = 0; row < 5; ++row) {
            show(static_cast<SettingsPane>(row));
            window->resize(window->minimumSize());
            if (static_cast<SettingsPane>(row) == SettingsPane::advanced)
                click(button("Troubleshooting"));
            runEventLoopOnce();
            for (auto* widget : shown())
                checkControl(*widget);
            for (auto* label : shown<TextLabel>()) {
                EXPECT_GE(label->height(), label->heightForWidth(label->width()))
                    << label->text().toStdString() << row << factor;
            }
            const auto* area = window->findChild<QScrollArea*>();
            EXPECT_LE(area->widget()->width(), area->viewport()->width())
                << "pane " << row << ", font " << factor;
        }
    }
    QApplication::setFont(usual);
}

TEST_F(SettingsWindowTest, OperatesAutomation) {
    show(SettingsPane::automation);
    click(named("Restore on wake"));
    click(named("Restore on monitor connect"));
    EXPECT_TRUE(settings.load()->autoRestoreOnWake);
    EXPECT_FALSE(settings.load()->autoRestoreOnConnect);
    loginItem.fails = true;
    auto* login = named("Launch Tavrin at login");
    click(login);
    EXPECT_TRUE(says("Could not enable launch at login: no room"));
    time.pass(0);
    EXPECT_FALSE(login->isChecked());
    loginItem.fails = false;
    click(login);
    EXPECT_FALSE(says("Could not enable launch at login: no room"));
    EXPECT_TRUE(settings.load()->launchAtLogin);
    auto* picker = named<QComboBox>("Default Layout, Desk");
    ASSERT_TRUE(picker);
    EXPECT_EQ(picker->currentText(), "None");
    picker->setCurrentIndex(picker->findText("Play"));
    Q_EMIT picker->activated(picker->currentIndex());
    EXPECT_EQ(profileNamed("Desk").defaultLayoutID, playID);
    QWheelEvent wheel({5, 5}, picker->mapToGlobal(QPointF(5, 5)), {0, 40}, {0, 120}, {}, {},
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(picker, &wheel);
    EXPECT_EQ(profileNamed("Desk").defaultLayoutID, playID) << "scrolling over it chooses nothing";
    picker->setCurrentIndex(0);
    Q_EMIT picker->activated(0);
    EXPECT_EQ(profileNamed("Desk").defaultLayoutID, std::nullopt);
}

TEST_F(SettingsWindowTest, OperatesApps) {
    windows.windows = {testing::window(1, "Editor", "a", {0, 0, 100, 100})};
    show(SettingsPane::apps);
    EXPECT_TRUE(says("No excluded apps."));
    auto* field = named<QLineEdit>("Bundle ID");
    field->setText("editor");
    EXPECT_FALSE(button("Add App")->isEnabled());
    field->setText(" com.example.editor ");
    click(button("Add App"));
    EXPECT_EQ(field->text(), "");
    click(named("Exclude Editor"));
    EXPECT_EQ(settings.load()->excludedBundleIDs,
              (std::vector<std::string>{"com.example.editor", "Editor.desktop"}));
    click(named("Remove com.example.editor"));
    click(named("Remove Editor.desktop"));
    EXPECT_TRUE(settings.load()->excludedBundleIDs.empty());
    EXPECT_TRUE(says("No excluded apps."));
}

TEST_F(SettingsWindowTest, OperatesShortcuts) {
    show(SettingsPane::shortcuts);
    auto* field = named("Shortcut of Work, Desk");
    EXPECT_EQ(field->text(), "Click to set");
    click(field);
    EXPECT_EQ(field->text(), "Press shortcut…");
    pressHere(keyR, option);
    EXPECT_TRUE(says("Use Control in the shortcut so Tavrin does not conflict with app or system commands."));
    pressHere(keyR, control | option);
    EXPECT_EQ(field->text(), "⌃⌥R");
    EXPECT_EQ(settings.load()->layoutShortcuts.at(workID.text()), (KeyCombo{keyR, control | option}));
    EXPECT_TRUE(field->accessibleDescription().startsWith("Ctrl+Alt+R"));
    click(field);
    QFocusEvent leaving(QEvent::FocusOut);
    QCoreApplication::sendEvent(field, &leaving);
    EXPECT_FALSE(keys.local) << "recording ends with the focus";
    click(named("Clear shortcut of Work, Desk"));
    EXPECT_TRUE(settings.load()->layoutShortcuts.empty());

    ASSERT_TRUE(store.deleteLayout(workID));
    list.reload();
    runEventLoopOnce();
    EXPECT_FALSE(says("Work"));
}

TEST_F(SettingsWindowTest, OperatesAdvanced) {
    permission.state = AccessibilityPermissionState::denied;
    show(SettingsPane::advanced);
    EXPECT_TRUE(says("No restore attempt recorded yet in this app session."));
    click(named("Recheck permission"));
    EXPECT_TRUE(says("Accessibility permission required"));
    click(named("Cluster extra same-app windows into the dominant saved region"));
    EXPECT_FALSE(settings.load()->clusterExtraAppWindows);
    attempts.record(time.now(), RestoreTriggerSource::shortcut, testing::layout("Work", {}),
                    RestoreResult(2, 1, 1, {"Editor: first", "Mail: second"}));
    EXPECT_TRUE(says("Editor: first\nMail: second"));
    click(named("Copy the last restore attempt"));
    EXPECT_TRUE(QApplication::clipboard()->text().endsWith("Editor: first\nMail: second\n"));
    EXPECT_FALSE(says("/data"));
    click(button("Troubleshooting"));
    EXPECT_TRUE(says("/data"));
    click(button("Copy Report"));
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith("Tavrin troubleshooting\n"));
    click(button("Open Data Folder"));
    EXPECT_EQ(host.log, "/data ");
    click(button("Troubleshooting"));
    EXPECT_FALSE(says("/data"));
}

TEST_F(SettingsWindowTest, OperatesLayouts) {
    show(SettingsPane::layouts);
    restores.results = {RestoreResult(2, 2, 0, {})};
    click(named("Restore Work"));
    EXPECT_TRUE(says("Restored: 2 of 2 windows in place."));
    EXPECT_FALSE(named("Update Evening")->isEnabled());
    windows.windows = {testing::window(1, "Editor", "a", {0, 0, 100, 100})};
    click(named("Update Work"));
    EXPECT_TRUE(says("Updated with 1 window."));
    choose("More for Work", "Make Default");
    EXPECT_EQ(profileNamed("Desk").defaultLayoutID, workID);
    EXPECT_TRUE(says("Default"));
    choose("More for Work", "Do Not Restore Automatically");
    EXPECT_EQ(profileNamed("Desk").defaultLayoutID, std::nullopt);
    auto* save = button("Save Layout…");
    click(save);
    EXPECT_EQ(host.log, "save ");
    const QPoint corner = save->mapToGlobal(QPoint(0, 0));
    EXPECT_EQ(savedBeside,
              (Rect{double(corner.x()), double(corner.y()), double(save->width()), double(save->height())}));

    choose("More for Play", "Delete…");
    click(button("Cancel"));
    EXPECT_EQ(layoutNames(), (std::vector<std::string>{"Work", "Play", "Evening"}));
    choose("More for Play", "Delete…");
    click(button("Delete Layout"));
    EXPECT_EQ(layoutNames(), (std::vector<std::string>{"Work", "Evening"}));
    for (const char* setup : {"Desk", "Home"}) {
        choose(QString("More for %1").arg(setup), "Delete…");
        click(button("Delete Setup"));
    }
    EXPECT_TRUE(store.loadProfiles()->empty());
    click(button("Save Layout…"));
    EXPECT_EQ(host.log, "save save ") << "the empty pane offers it too";
}

TEST_F(SettingsWindowTest, AQuestionKeepsEverythingElseOutOfReach) {
    show(SettingsPane::layouts);
    auto* more = named<QToolButton>("More for Work");
    more->setFocus();
    choose("More for Work", "Delete…");
    EXPECT_TRUE(says("Delete layout “Work”?"));
    ASSERT_EQ(shown<QuestionSheet>().size(), 1u);
    const QWidget* sheet = shown<QuestionSheet>().front();
    window->resize(900, 700);
    runEventLoopOnce();
    EXPECT_EQ(sheet->geometry(), window->rect());
    const QWidget* above = window->childAt(more->mapTo(window, QPoint(5, 5)));
    EXPECT_TRUE(above == sheet || sheet->isAncestorOf(above));
    const auto focusedText = [] {
        const auto* focused = qobject_cast<QAbstractButton*>(QApplication::focusWidget());
        return focused ? focused->text() : QString();
    };
    EXPECT_EQ(focusedText(), "Cancel");
    press(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(focusedText(), "Delete Layout");
    press(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(focusedText(), "Cancel");
    press(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(says("Delete layout “Work”?"));
    EXPECT_EQ(QApplication::focusWidget(), more);

    choose("More for Work", "Delete…");
    show(SettingsPane::apps);
    EXPECT_FALSE(says("Delete layout “Work”?")) << "it goes with its pane";
    EXPECT_EQ(layoutNames().size(), 3u);
}

// Tab leads from the list of panes through every control of the pane, from top to bottom, and back.
TEST_F(SettingsWindowTest, ReachesEveryControlByTab) {
    windows.windows = {testing::window(1, "Editor", "a", {0, 0, 100, 100})};
    ASSERT_TRUE(settings.save({.excludedBundleIDs = {"a.b", "c.d"}}));
    shortcuts.setLayoutShortcut(KeyCombo{keyR, control | option}, workID);
    attempts.record(time.now(), RestoreTriggerSource::shortcut, testing::layout("Work", {}),
                    RestoreResult(2, 1, 1, {"Editor: first"}));
    for (int pane = 0; pane < 5; ++pane) {
        show(static_cast<SettingsPane>(pane));
        if (static_cast<SettingsPane>(pane) == SettingsPane::advanced)
            click(button("Troubleshooting"));
        std::set<std::string> expected;
        for (auto* widget : shown())
            if (widget->focusPolicy() & Qt::TabFocus && widget->isEnabled() && widget != &sideList())
                expected.insert(spokenName(*widget));
        sideList().setFocus();
        std::set<std::string> reached;
        int bottom = 0;
        for (press(&sideList(), Qt::Key_Tab); QApplication::focusWidget() != &sideList();
             press(QApplication::focusWidget(), Qt::Key_Tab)) {
            const auto* focused = QApplication::focusWidget();
            ASSERT_TRUE(reached.insert(spokenName(*focused)).second)
                << "pane " << pane << " goes round in a circle";
            const int lowerEdge = focused->mapTo(window, QPoint(0, focused->height())).y();
            const auto* area = window->findChild<QScrollArea*>();
            EXPECT_GE(lowerEdge + area->verticalScrollBar()->value(), bottom) << spokenName(*focused);
            bottom = lowerEdge + area->verticalScrollBar()->value() - focused->height();
            EXPECT_LE(lowerEdge, window->height()) << "scrolled into sight";
        }
        EXPECT_EQ(reached, expected) << "pane " << pane;
    }
}

TEST_F(SettingsWindowTest, RenamesInPlace) {
    show(SettingsPane::layouts);
    choose("More for Work", "Rename");
    ASSERT_TRUE(nameField());
    EXPECT_EQ(nameField()->selectedText(), "Work");
    nameField()->setText("play");
    press(nameField(), Qt::Key_Return);
    EXPECT_TRUE(says("Another layout of this display setup has this name."));
    nameField()->setText("Wo");
    displays.snapshot = testing::leftAlone();
    current.refresh();
    runEventLoopOnce();
    ASSERT_TRUE(nameField()) << "other news do not end the editing";
    EXPECT_EQ(nameField()->text(), "Wo");
    press(nameField(), Qt::Key_Escape);
    EXPECT_FALSE(nameField());
    choose("More for Work", "Rename");
    nameField()->setText("Focus");
    press(nameField(), Qt::Key_Return);
    choose("More for Home", "Rename");
    nameField()->setText("Flat");
    press(nameField(), Qt::Key_Return);
    EXPECT_EQ(layoutNames(), (std::vector<std::string>{"Focus", "Play", "Evening"}));
    EXPECT_TRUE(says("Flat"));
}

} // namespace
} // namespace tavrin

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
#include <QTextEdit>
#include <QToolButton>
#include <QWheelEvent>

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
        if (menuButton)
            Q_EMIT menuButton->menu()->aboutToShow();
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
    /// What a screen reader says of the control with the focus.
    static std::string focusedName() {
        const QWidget* focused = QApplication::focusWidget();
        return focused ? spokenName(*focused) : "nothing";
    }
    std::string press(int key) {
        press(QApplication::focusWidget(), key);
        return focusedName();
    }
    QListWidget& sideList() { return *window->findChild<QListWidget*>(); }
};

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
            for (int pass = 0; pass < 12; ++pass) // rows that stack, and then the scroll bar
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

TEST_F(SettingsWindowTest, AQuestionKeepsEverythingElseOutOfReach) {
    show(SettingsPane::layouts);
    auto* more = named<QToolButton>("More for Work");
    more->setFocus();
    choose("More for Work", "Delete…");
    EXPECT_TRUE(says("Delete layout “Work”?"));
    ASSERT_EQ(shown<QuestionSheet>().size(), 1u);
    const QWidget* sheet = shown<QuestionSheet>().front();
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

// By keyboard alone: every list is one Tab stop, and within it the arrows, typed letters, F2 and Delete do
// the rest.
TEST_F(SettingsWindowTest, LeadsThroughAListByKeyboard) {
    show(SettingsPane::layouts);
    EXPECT_EQ(press(Qt::Key_Tab), "Save Layout…");
    EXPECT_EQ(press(Qt::Key_Tab), "Work, Desk");
    EXPECT_EQ(press(Qt::Key_Down), "Play, Desk");
    EXPECT_EQ(press(Qt::Key_End), "Evening, Home");
    EXPECT_EQ(press(Qt::Key_Up), "Home");
    EXPECT_EQ(press(Qt::Key_Home), "Desk, connected now");
    EXPECT_EQ(press(Qt::Key_PageDown), "Evening, Home");
    QKeyEvent letter(QEvent::KeyPress, Qt::Key_W, Qt::NoModifier, "w");
    QCoreApplication::sendEvent(QApplication::focusWidget(), &letter);
    EXPECT_EQ(focusedName(), "Work, Desk");
    EXPECT_EQ(press(Qt::Key_Right), "Restore Work");
    EXPECT_EQ(press(Qt::Key_Right), "More for Work");
    EXPECT_EQ(press(Qt::Key_Left), "Restore Work");
    EXPECT_EQ(press(Qt::Key_Down), "Play, Desk");
    EXPECT_EQ(press(Qt::Key_Tab), "Settings panes") << "one stop, wherever in the list";

    sideList().setFocus();
    press(Qt::Key_Tab);
    EXPECT_EQ(press(Qt::Key_Tab), "Play, Desk") << "where it was left";
    press(Qt::Key_F2);
    ASSERT_TRUE(nameField());
    nameField()->setText("work");
    press(Qt::Key_Return);
    EXPECT_TRUE(says("Another layout of this display setup has this name."));
    nameField()->setText("Rest");
    displays.snapshot = testing::leftAlone();
    current.refresh();
    ASSERT_TRUE(nameField()) << "other news do not end the editing";
    EXPECT_EQ(press(Qt::Key_Return), "Rest, Desk");
    press(Qt::Key_Delete);
    press(Qt::Key_Tab);
    EXPECT_EQ(press(Qt::Key_Return), "Work, Desk") << "the next one, or the last";
}

TEST_F(SettingsWindowTest, EveryFocusedControlIsInSight) {
    for (int i = 0; i < 30; ++i)
        save("Layout " + std::to_string(i), deskID, {});
    show(SettingsPane::layouts);
    ASSERT_TRUE(waitUntil([&] { return shown<QWidget>().size() > 30 * 8; }));
    const auto* area = window->findChild<QScrollArea*>();
    press(Qt::Key_Tab);
    EXPECT_EQ(press(Qt::Key_Tab), "Filter layouts");
    press(Qt::Key_Tab);
    for (const int key : {Qt::Key_End, Qt::Key_Home, Qt::Key_PageDown, Qt::Key_PageDown, Qt::Key_Up}) {
        press(key);
        const QWidget* focused = QApplication::focusWidget();
        const QRect place(focused->mapTo(area->viewport(), QPoint(0, 0)), focused->size());
        EXPECT_TRUE(area->viewport()->rect().contains(place)) << focusedName();
    }
}

// Nothing is rebuilt under the pointer or the focus.
TEST_F(SettingsWindowTest, ChangesCardsInPlace) {
    show(SettingsPane::layouts);
    auto* restore = named("Restore Work");
    windows.windows = {testing::window(1, "Editor", "a", {0, 0, 100, 100})};
    changes.update(workID);
    ASSERT_TRUE(store.setDefaultLayout(deskID, workID));
    shortcuts.setLayoutShortcut(KeyCombo{keyR, control | option}, workID);
    list.reload();
    EXPECT_EQ(named("Restore Work"), restore);
    EXPECT_TRUE(says("1 window · Changed just now"));
    EXPECT_TRUE(says("Default"));
    EXPECT_TRUE(says("⌃⌥R"));
    EXPECT_TRUE(says("Updated with 1 window."));
}

TEST_F(SettingsWindowTest, SaysFirstWhatIsMissing) {
    information.facts = {};
    permission.state = AccessibilityPermissionState::denied;
    permissionModel.refresh();
    files.files["/data/settings.json"] = "{";
    for (int pane = 0; pane < 5; ++pane) {
        show(static_cast<SettingsPane>(pane), SettingsWindowSurface::ResetNotice::shown);
        EXPECT_TRUE(says("Accessibility permission required")) << pane;
        EXPECT_TRUE(says("“settings.json” cannot be read")) << pane;
    }
    EXPECT_TRUE(says("Beta data was reset on this launch. Profiles, layouts, and settings start fresh."));
    information.sentences.requestPermission = "Enable it";
    permissionModel.refresh();
    click(button("Enable it"));
    EXPECT_EQ(permission.prompts, 1);
    show(SettingsPane::layouts);
    EXPECT_FALSE(button("Save Layout…")->isEnabled());
    EXPECT_FALSE(named("Restore Work")->isEnabled());
    permission.state = AccessibilityPermissionState::granted;
    click(button("Recheck"));
    EXPECT_TRUE(named("Restore Work")->isEnabled());
    EXPECT_FALSE(says("Accessibility permission required"));
}

TEST_F(SettingsWindowTest, ShowsTheLastAttemptAndAReportToCopy) {
    show(SettingsPane::advanced);
    EXPECT_TRUE(says("No restore attempt recorded yet in this app session."));
    attempts.record(time.now(), RestoreTriggerSource::shortcut, testing::layout("Work", {}),
                    RestoreResult(2, 1, 1, {"Editor: first", "Mail: second"}));
    auto* errors = named<QTextEdit>("Errors");
    ASSERT_TRUE(errors);
    EXPECT_EQ(errors->toPlainText(), "Editor: first\nMail: second");
    click(named("Copy the last restore attempt"));
    EXPECT_TRUE(QApplication::clipboard()->text().endsWith("Editor: first\nMail: second\n"));
    click(button("Troubleshooting"));
    EXPECT_EQ(named<QTextEdit>("Data")->toPlainText(), "/data");
    click(button("Copy Report"));
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith("Tavrin troubleshooting\n"));
    click(button("Open Data Folder"));
    EXPECT_EQ(host.log.substr(host.log.size() - 6), "/data ");
}

TEST_F(SettingsWindowTest, TellsWhatIsRestoredByItself) {
    show(SettingsPane::automation);
    auto* picker = named<QComboBox>("Default Layout, Desk");
    const auto count = [&] {
        return std::ranges::count_if(shown<QLabel>(), [](const QLabel* label) {
            return label->text() == "Nothing is restored automatically on this setup.";
        });
    };
    EXPECT_EQ(count(), 2);
    picker->setCurrentIndex(picker->findText("Play"));
    Q_EMIT picker->activated(picker->currentIndex());
    EXPECT_EQ(count(), 1);
    QWheelEvent wheel({5, 5}, picker->mapToGlobal(QPointF(5, 5)), {0, 40}, {0, 120}, {}, {},
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(picker, &wheel);
    EXPECT_EQ(profileNamed("Desk").defaultLayoutID, playID) << "scrolling over it chooses nothing";
}

TEST_F(SettingsWindowTest, SaysWhatIsSpecialAboutAShortcut) {
    show(SettingsPane::shortcuts);
    auto* field = named("Shortcut of Work, Desk");
    shortcuts.setLayoutShortcut(KeyCombo{8, control}, workID);
    EXPECT_EQ(field->text(), "⌃C");
    EXPECT_TRUE(field->accessibleDescription().startsWith("Ctrl+C"));
    EXPECT_TRUE(says("Most apps use this combination themselves."));
    shortcuts.refusedShortcuts.set({{KeyCombo{8, control}, "Another program uses this combination."}});
    EXPECT_TRUE(says("Another program uses this combination."));
}

} // namespace
} // namespace tavrin

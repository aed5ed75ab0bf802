#include "doubles/fake_desktop.h"
#include "doubles/fake_file_system.h"
#include "doubles/fake_time.h"
#include "shortcuts/shortcut_conflict_checker.h"
#include "shortcuts/shortcut_manager.h"
#include "shortcuts/shortcut_recorder.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

constexpr auto control = ModifierSet::control, option = ModifierSet::option, command = ModifierSet::command,
               shift = ModifierSet::shift;
constexpr std::uint16_t keyA = 0, keyQ = 12, keyR = 15, keySpace = 49, keyEscape = 53, keyLeft = 123;

KeyEvent press(std::uint16_t keyCode, ModifierSet modifiers, std::uint64_t otherFlags = 0) {
    return {keyCode, modifiers.rawValue | otherFlags};
}

TEST(KeyCombo, ShowsItselfAndMatchesPresses) {
    EXPECT_EQ((KeyCombo{keyR, control | option | shift | command}.displayString()), "⌃⌥⇧⌘R");
    EXPECT_EQ((KeyCombo{keySpace, {}}.displayString()), "Space");
    EXPECT_EQ((KeyCombo{50, control}.displayString()), "⌃Key50");
    EXPECT_EQ(KeyCombo::keyName(10), "Key10");
    const KeyCombo combo{keyR, control | command};
    const std::uint64_t capsLock = 0x10000, function = 0x800000, deviceBits = 0x101;
    EXPECT_TRUE(combo.matches(press(keyR, control | command, capsLock | function | deviceBits)));
    EXPECT_FALSE(combo.matches(press(keyR, control | command | shift)));
    EXPECT_FALSE(combo.matches(press(keyR, control)));
    EXPECT_FALSE(combo.matches(press(keyQ, control | command)));
}

class ShortcutManagerTest : public ::testing::Test {
protected:
    testing::FakeFileSystem files;
    testing::FakeTime time;
    SettingsStore settings{AppSupportPaths{files, "/data"}, time};
    testing::FakeKeys keys;
    std::string fired;
    const Uuid work = Uuid::random(), play = Uuid::random();

    ShortcutManager made() { return ShortcutManager(settings, keys, time); }

    void listen(ShortcutManager& manager) {
        manager.onAutoDetect = [this] { fired += "auto "; };
        manager.onLayoutRestore = [this](const Uuid& id) { fired += id == work ? "work " : "play "; };
        manager.start();
    }
    std::string pressed(const KeyEvent& event) {
        fired.clear();
        keys.press(event);
        return fired;
    }
};

TEST_F(ShortcutManagerTest, FiresGlobalBeforeLayoutAndOnlyWhileStarted) {
    auto manager = made();
    listen(manager);
    manager.start();
    manager.setAutoDetectShortcut(KeyCombo{keyR, control | option});
    manager.setLayoutShortcut(KeyCombo{keyR, control | option}, work);
    manager.setLayoutShortcut(KeyCombo{keyQ, control}, play);
    time.pass(1);
    EXPECT_EQ(pressed(press(keyR, control | option)), "auto ") << "and once, although started twice";
    EXPECT_EQ(pressed(press(keyQ, control)), "play ");
    EXPECT_EQ(pressed(press(keyQ, control | shift)), "");
    EXPECT_TRUE(keys.local(press(keyQ, control))) << "the program's own windows do not get the press";
    EXPECT_FALSE(keys.local(press(keyQ, {})));
    manager.stop();
    EXPECT_EQ(pressed(press(keyQ, control)), "");
    EXPECT_FALSE(keys.local);
}

TEST_F(ShortcutManagerTest, WatchesJustItsShortcutsAndNoneDuringARecording) {
    auto manager = made();
    listen(manager);
    using Combos = std::vector<KeyCombo>;
    const KeyCombo first{keyR, control}, second{keyQ, control};
    EXPECT_EQ(keys.watched, Combos{});
    keys.refused = {{first, "Another program uses this combination."}};
    manager.setAutoDetectShortcut(first);
    manager.setLayoutShortcut(first, work);
    manager.setLayoutShortcut(second, play);
    EXPECT_EQ(keys.watched, (Combos{first, second}));
    EXPECT_EQ(manager.refusedShortcuts.value(), keys.refused);
    keys.refused.clear();
    keys.refusedChanged.emit();
    EXPECT_TRUE(manager.refusedShortcuts.value().empty());
    {
        const Token recording = manager.pause();
        const Token another = manager.pause();
        EXPECT_EQ(keys.watched, Combos{});
        manager.pruneLayoutShortcuts({work});
        EXPECT_EQ(keys.watched, Combos{});
    }
    EXPECT_EQ(keys.watched, Combos{first});
    manager.stop();
    EXPECT_EQ(keys.watched, Combos{});
}

TEST_F(ShortcutManagerTest, SwallowsTheRecordedPressOnceAndNotForLong) {
    auto manager = made();
    listen(manager);
    const auto combo = press(keyR, control | option);
    manager.setAutoDetectShortcut(KeyCombo{keyR, control | option});
    time.pass(0.5);
    EXPECT_EQ(pressed(press(keyQ, control)), "");
    EXPECT_EQ(pressed(combo), "");
    EXPECT_EQ(pressed(combo), "auto ");
    manager.setLayoutShortcut(KeyCombo{keyR, control | option}, work);
    time.pass(0.75);
    EXPECT_EQ(pressed(combo), "") << "the last moment counts";
    manager.setLayoutShortcut(KeyCombo{keyR, control | option}, work);
    time.pass(0.76);
    EXPECT_EQ(pressed(combo), "auto ");
    manager.setLayoutShortcut(KeyCombo{keyR, control | option}, work);
    manager.setLayoutShortcut(std::nullopt, play);
    EXPECT_EQ(pressed(combo), "auto ") << "clearing another shortcut ends the wait";
}

TEST_F(ShortcutManagerTest, KeepsOnlyShortcutsWithControlAndWritesThemBack) {
    auto manager = made();
    manager.setAutoDetectShortcut(KeyCombo{keyR, control});
    manager.setLayoutShortcut(KeyCombo{keyQ, control}, work);
    manager.setLayoutShortcut(KeyCombo{keyA, control}, play);
    EXPECT_EQ(made().layoutShortcuts.value(), manager.layoutShortcuts.value());
    EXPECT_EQ(made().autoDetectShortcut.value(), (KeyCombo{keyR, control}));
    manager.setAutoDetectShortcut(KeyCombo{keyR, option});
    manager.setLayoutShortcut(KeyCombo{keyQ, option}, work);
    EXPECT_EQ(settings.load()->autoDetectShortcut, std::nullopt);
    EXPECT_EQ(settings.load()->layoutShortcuts,
              (std::map<std::string, KeyCombo>{{play.text(), {keyA, control}}}));
    manager.pruneLayoutShortcuts({work});
    EXPECT_TRUE(made().layoutShortcuts.value().empty());
}

TEST_F(ShortcutManagerTest, CleansStoredShortcutsAndLeavesCleanFilesAlone) {
    const AppSettings clean{.autoDetectShortcut = KeyCombo{keyR, control},
                            .layoutShortcuts = {{work.text(), {keyQ, control}}}};
    ASSERT_TRUE(settings.save(clean));
    files.log.clear();
    made();
    EXPECT_TRUE(files.log.empty());
    AppSettings stored = clean;
    stored.autoRestoreOnWake = true;
    stored.layoutShortcuts["not an identifier"] = {keyA, control};
    stored.layoutShortcuts[play.text()] = {keyA, option};
    ASSERT_TRUE(settings.save(stored));
    EXPECT_EQ(made().layoutShortcuts.value().size(), 1u);
    stored.layoutShortcuts = clean.layoutShortcuts;
    EXPECT_EQ(settings.load(), stored);
    stored.autoDetectShortcut = KeyCombo{keyR, option};
    ASSERT_TRUE(settings.save(stored));
    EXPECT_EQ(made().autoDetectShortcut.value(), std::nullopt);
    EXPECT_EQ(settings.load()->autoDetectShortcut, std::nullopt);
}

TEST_F(ShortcutManagerTest, KeepsWhatAnotherCopyStored) {
    files.failing = {"read"};
    auto blind = made();
    files.failing = {};
    auto one = made(), other = made();
    one.setLayoutShortcut(KeyCombo{keyQ, control}, work);
    other.setAutoDetectShortcut(KeyCombo{keyR, control});
    blind.setLayoutShortcut(KeyCombo{keyA, control}, play);
    EXPECT_EQ(blind.autoDetectShortcut.value(), (KeyCombo{keyR, control}));
    EXPECT_EQ(settings.load(), (AppSettings{.autoDetectShortcut = KeyCombo{keyR, control},
                                            .layoutShortcuts = {{work.text(), {keyQ, control}},
                                                                {play.text(), {keyA, control}}}}));
    one.pruneLayoutShortcuts({play});
    EXPECT_EQ(settings.load()->layoutShortcuts.size(), 1u);
}

TEST(ShortcutConflictChecker, NamesReservationsThenTheFirstOwner) {
    const ShortcutConflictChecker checker;
    const auto message = [&](KeyCombo combo) { return checker.conflictMessage(combo, {}).value_or(""); };
    for (const std::uint16_t arrow : {123, 124, 125, 126})
        EXPECT_EQ(message({arrow, control}),
                  "Control-arrow shortcuts are commonly reserved by Mission Control and Spaces.");
    EXPECT_EQ(message({keyLeft, control | shift}), "");
    EXPECT_EQ(message({keyQ, control | command}), "Control-Command-Q locks the screen.");
    EXPECT_EQ(message({keyQ, control}), "");
    EXPECT_EQ(message({keySpace, control}),
              "Control-Space is commonly reserved by macOS for input source switching.");
    EXPECT_EQ(message({keySpace, control | command}),
              "Control-Command-Space opens the emoji and symbols picker.");
    EXPECT_EQ(message({keySpace, control | option}), "");
    const std::vector<ShortcutConflictChecker::Assignment> owners{
        {"Work", {keyR, control}}, {"Play", {keyR, control}}, {"Lock", {keyQ, control | command}}};
    EXPECT_EQ(checker.conflictMessage({keyR, control}, owners), "This shortcut is already used by Work.");
    EXPECT_EQ(checker.conflictMessage({keyQ, control | command}, owners),
              "Control-Command-Q locks the screen.");
}

TEST(ShortcutRecorder, TakesRefusesAndCancels) {
    std::optional<KeyCombo> stored = KeyCombo{keyA, control};
    ShortcutRecorder recorder{stored, [&](auto combo) { stored = combo; },
                              [](const KeyCombo&) { return std::nullopt; }};
    EXPECT_EQ(recorder.text(), "⌃A");
    EXPECT_FALSE(recorder.handle(press(keyR, control))) << "not recording";
    recorder.startRecording();
    EXPECT_EQ(recorder.text(), "Press shortcut…");
    EXPECT_TRUE(recorder.handle(press(keyR, option)));
    EXPECT_EQ(recorder.validationMessage(),
              "Use Control in the shortcut so Tavrin does not conflict with app or system commands.");
    EXPECT_TRUE(recorder.handle(press(keyEscape, command)));
    EXPECT_FALSE(recorder.isRecording());
    EXPECT_TRUE(recorder.validationMessage()) << "cancelling leaves the message";
    EXPECT_EQ(stored, (KeyCombo{keyA, control}));
    recorder.startRecording();
    EXPECT_TRUE(recorder.handle(press(keyR, control | option)));
    EXPECT_EQ(stored, (KeyCombo{keyR, control | option}));
    EXPECT_FALSE(recorder.validationMessage() || recorder.isRecording());
    recorder.clear();
    EXPECT_EQ(recorder.text(), "Click to set");
}

} // namespace
} // namespace tavrin

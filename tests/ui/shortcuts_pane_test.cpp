#include "settings_fixture.h"
#include "ui/shortcuts_pane.h"

namespace tavrin {
namespace {

constexpr auto control = ModifierSet::control, option = ModifierSet::option, command = ModifierSet::command;
constexpr std::uint16_t keyQ = 12, keyR = 15, keyEscape = 53;
const KeyCombo controlOptionR{keyR, control | option};

class ShortcutsPaneTest : public ::testing::Test, public testing::SettingsFixture {
protected:
    std::string fired;

    ShortcutsPaneTest() {
        shortcuts.onAutoDetect = [this] { fired += "auto "; };
        shortcuts.onLayoutRestore = [this](const Uuid& id) { fired += id == workID ? "work " : "other "; };
        shortcuts.start();
    }
    ShortcutsPane made() { return ShortcutsPane(collaborators); }
};

TEST_F(ShortcutsPaneTest, ComparesWithTheShortcutsInTheOrderShown) {
    auto pane = made();
    pane.appear();
    const auto refusal = [&](const std::optional<Uuid>& layoutID) {
        pane.recorder(layoutID).startRecording();
        pressHere(keyR, control | option);
        auto message = pane.recorder(layoutID).recorder().validationMessage().value_or("");
        pane.recorder(layoutID).cancelRecording();
        return message;
    };
    shortcuts.setLayoutShortcut(controlOptionR, eveningID);
    shortcuts.setLayoutShortcut(controlOptionR, workID);
    EXPECT_EQ(refusal(std::nullopt), "This shortcut is already used by Work.");
    EXPECT_EQ(refusal(workID), "This shortcut is already used by Evening.") << "its own does not count";
    shortcuts.setAutoDetectShortcut(controlOptionR);
    EXPECT_EQ(refusal(workID), "This shortcut is already used by Auto-detect.");
}

TEST_F(ShortcutsPaneTest, DropsTheShortcutsOfLayoutsThatAreGone) {
    auto pane = made();
    pane.appear();
    shortcuts.setLayoutShortcut(controlOptionR, workID);
    shortcuts.setLayoutShortcut(KeyCombo{keyQ, control}, playID);
    ASSERT_TRUE(store.deleteLayout(workID));
    pane.recorder(workID).startRecording();
    int changes = 0;
    const auto token = pane.changed.connect([&] { ++changes; });
    list.reload();
    EXPECT_EQ(changes, 1);
    pane.appear();
    EXPECT_EQ(shortcuts.layoutShortcuts.value(), (std::map<Uuid, KeyCombo>{{playID, {keyQ, control}}}));
    time.pass(1);
    pressHere(keyQ, control);
    EXPECT_EQ(fired, "other ") << "a recorder that went while it recorded keeps nothing quiet";

    files.failing = {"read"};
    pane.appear();
    EXPECT_EQ(shortcuts.layoutShortcuts.value().size(), 1U) << "unreadable is not gone";
    files.failing = {};
    files.files.erase("/data/layouts.json");
    pane.appear();
    EXPECT_EQ(shortcuts.layoutShortcuts.value().size(), 1U) << "a file that is away may come back";
}

} // namespace
} // namespace tavrin

#include "platform/i3/i3_tree.h"
#include "platform/sway/sway_config.h"
#include "posix/temporary_directory.h"

#include <gtest/gtest.h>

#include <xkbcommon/xkbcommon-keysyms.h>

namespace tavrin {

static void PrintTo(const SwayUserBinding& binding, std::ostream* out) {
    *out << binding.position.value_or(0) << '/' << binding.symbol << '/' << binding.modifiers.rawValue;
}

namespace {

TEST(I3TreeTest, whatIsNoTreeHasNoWindows) {
    std::string deep = R"({"type":"root","nodes":[)";
    for (int i = 0; i < 400; ++i)
        deep += R"({"id":1,"nodes":[)";
    for (const auto& text :
         {std::string(), std::string("[]"), std::string("{}"), std::string(100'000, '['), deep})
        EXPECT_FALSE(readI3Tree(text)) << text.substr(0, 40);
    for (const auto* text :
         {R"({"type":"root","nodes":7,"floating_nodes":{}})",
          R"({"type":"root","nodes":[7,null,{"pid":1},{"id":"x","pid":1},{"id":1,"pid":[]}]})"}) {
        const auto read = readI3Tree(text);
        EXPECT_TRUE(read && read->windows.empty()) << text;
    }
    for (const auto* text : {"", "[", "7", "{}", R"({"change":7})"}) {
        EXPECT_EQ(readI3Binding(text), std::nullopt);
        EXPECT_EQ(readI3Change(text), "");
        EXPECT_EQ(readI3Version(text).has_value(), false);
        EXPECT_TRUE(readI3Results(text).empty());
    }
}

TEST(SwayConfigTest, theUsersBindingsAreFoundWhereverTheyStand) {
    TemporaryDirectory folder;
    folder.write("parts/a.conf", "bindsym $mod+y exec a\ninclude ../config\ninclude /nowhere/*\n");
    const auto main = folder.write("config", R"(# bindsym Mod4+x exec comment
set $mod Mod4
set $mod2 Mod1
bindsym --locked --to-code $mod2+Shift+Return exec terminal
bindcode Ctrl+$mod+38 exec by position
bindsym \
    Control+exclam exec continued
bindsym {
    Mod4+a exec block
    --release Alt+Ctrl+Left exec flags
}
mode "resize" {
    bindsym Mod4+r nothing
}
mode "other" bindsym Mod4+s nothing
bindsym Mod5+t exec a modifier that shortcuts do not have
bindsym Mod4+nonsense exec unknown
include parts/*.conf
)");
    const auto command = ModifierSet::command, control = ModifierSet::control, option = ModifierSet::option;
    const std::vector<SwayUserBinding> expected = {
        {.symbol = XKB_KEY_Return, .modifiers = option | ModifierSet::shift},
        {.position = 30, .modifiers = control | command},
        {.symbol = XKB_KEY_exclam, .modifiers = control},
        {.symbol = XKB_KEY_a, .modifiers = command},
        {.symbol = XKB_KEY_Left, .modifiers = option | control},
        {.symbol = XKB_KEY_y, .modifiers = command},
    };
    auto found = readSwayBindings(folder.read("config"), main);
    // A file that includes the one that includes it is read once more, and no further.
    ASSERT_GE(found.size(), expected.size());
    found.resize(expected.size());
    EXPECT_EQ(found, expected);
    EXPECT_TRUE(
        readSwayBindings(std::string(1 << 20, '$') + "\n{{{{}}}}}\nset $ x\ninclude\n", main).empty());
}

} // namespace
} // namespace tavrin

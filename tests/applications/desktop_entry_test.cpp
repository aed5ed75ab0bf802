#include "environment_change.h"
#include "platform/applications/desktop_entry.h"
#include "platform/applications/environment.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

using Locales = std::vector<std::string>;
using Words = std::vector<std::string>;

TEST(DesktopEntryTest, readsEverythingThatCounts) {
    const auto entry = parseDesktopEntry("\xEF\xBB\xBF# a comment = of a kind\n"
                                         "Name=Outside\n"
                                         "[Desktop Entry]\r\n"
                                         "Type=Application\r\n"
                                         "Name = Two\\sWords\\n\\\\ \r\n"
                                         "Exec=\"/opt/a b/prog\" --x=%u\n"
                                         "TryExec=prog\n"
                                         "  Icon=prog-icon\n"
                                         "StartupWMClass=Prog\n"
                                         "Categories=System;Terminal\\;Emulator;;\n"
                                         "OnlyShowIn=KDE;\nNotShowIn=GNOME;XFCE\n"
                                         "X-Flatpak=org.x.Prog\nX-SnapInstanceName=prog\n"
                                         "NoDisplay=1\nHidden=true\nTerminal=true\n"
                                         "X-GNOME-Autostart-enabled=false\nMimeType=text/plain;text/html\n"
                                         "[Desktop Action new]\nName=Not this\nExec=nor this\n");
    EXPECT_EQ(entry, (DesktopEntry{.name = "Two Words\n\\",
                                   .icon = "prog-icon",
                                   .exec = "\"/opt/a b/prog\" --x=%u",
                                   .tryExec = "prog",
                                   .startupWMClass = "Prog",
                                   .flatpak = "org.x.Prog",
                                   .snap = "prog",
                                   .categories = {"System", "Terminal;Emulator"},
                                   .onlyShowIn = {"KDE"},
                                   .notShowIn = {"GNOME", "XFCE"},
                                   .isApplication = true,
                                   .isHidden = true,
                                   .isNoDisplay = true,
                                   .runsInTerminal = true,
                                   .isAutostartEnabled = false,
                                   .opensPages = true}));
}

TEST(DesktopEntryTest, namesComeInTheBestLanguageThereIs) {
    constexpr auto file = "[Desktop Entry]\nName[sr@Latn]=latin\nName[de]=deutsch\nName=plain\n"
                          "Name[sr_YU]=yugoslav\nName[sr]=serbian\nName[pt_BR.UTF-8]=brasil\nName[fr]=\n";
    const struct {
        const char* language;
        const char* name;
    } cases[] = {{"sr_YU.UTF-8@Latn", "yugoslav"},
                 {"sr_ME@Latn", "latin"},
                 {"sr_ME", "serbian"},
                 {"de_AT.UTF-8", "deutsch"},
                 {"pt_BR.UTF-8", "brasil"},
                 {"pt_PT", "plain"},
                 {"fr_FR", "plain"},
                 {"C.UTF-8", "plain"},
                 {"", "plain"},
                 {"_@.", "plain"}};
    EnvironmentChange variables;
    for (const auto* variable : {"LC_ALL", "LC_MESSAGES"})
        variables.set(variable, std::nullopt);
    for (const auto& [language, name] : cases) {
        variables.set("LANG", language);
        EXPECT_EQ(parseDesktopEntry(file, messageLocales())->name, name) << language;
    }
}

TEST(DesktopEntryTest, survivesWhatIsNoDesktopEntry) {
    using namespace std::string_literals;
    const std::string large(maximumDesktopEntrySize, '\n');
    for (const auto& file :
         {""s, "\0\0"s, "[Desktop Entry"s, "Name=x\n"s, "[Other]\nName=x\n"s, "[Desktop Entry]\n"s + large})
        EXPECT_FALSE(parseDesktopEntry(file)) << file.substr(0, 40);
    for (const auto& file :
         {"[Desktop Entry]"s, "[Desktop Entry]\n=\n==\n[=]\n]=[\nName]=x\nName[=x\nNa me=x\n"s,
          "[Desktop Entry]\nName[]=\nName[.@]=x\nHidden=perhaps"s})
        EXPECT_EQ(parseDesktopEntry(file, {"de"}), DesktopEntry()) << file;

    const auto entry =
        parseDesktopEntry("[Desktop Entry]\nName=a\xFFz\0!\\\nExec=x\\q\\\nIcon="s + std::string(9000, 'i'));
    EXPECT_EQ(entry->name, "a\xEF\xBF\xBDz!\\");
    EXPECT_EQ(entry->exec, "x\\q\\");
    EXPECT_EQ(entry->icon.size(), 4096U);
}

TEST(ExecLineTest, wordsAndProgram) {
    const struct {
        const char* exec;
        std::optional<Words> words;
        const char* program;
    } cases[] = {
        {"firefox %u", Words{"firefox"}, "firefox"},
        {"/usr/bin/x --file=%f \"a \\\"b\\\" \\$c\" 100%%",
         Words{"/usr/bin/x", "--file=", "a \"b\" $c", "100%"}, "x"},
        {"\"/opt/My App/run\" \"\"", Words{"/opt/My App/run", ""}, "run"},
        {"env -u A FOO=1 B=\"x y\" /opt/prog -v",
         Words{"env", "-u", "A", "FOO=1", "B=x y", "/opt/prog", "-v"}, "prog"},
        {"env A=1", Words{"env", "A=1"}, ""},
        {"  ", Words{}, ""},
        {"\"open", std::nullopt, ""},
        {"a\\b 5%", Words{"a\\b", "5%"}, "a\\b"},
    };
    for (const auto& [exec, words, program] : cases) {
        EXPECT_EQ(execWords(exec), words) << exec;
        EXPECT_EQ(programOfCommand(execWords(exec).value_or(Words())), program) << exec;
    }
}

} // namespace
} // namespace tavrin

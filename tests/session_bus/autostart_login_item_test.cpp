#include "../posix/temporary_directory.h"
#include "applications/environment_change.h"
#include "platform/applications/desktop_entry.h"
#include "platform/posix/posix_file_system.h"
#include "platform/session_bus/autostart_login_item.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace tavrin {
namespace {

namespace fs = std::filesystem;

constexpr auto enabled = LoginItemStatus::enabled;
constexpr auto notRegistered = LoginItemStatus::notRegistered;
constexpr auto notFound = LoginItemStatus::notFound;
constexpr auto switchedOff = LoginItemStatus::requiresApproval;
const std::string userEntry = "config/autostart/org.tavrin.Tavrin.desktop";
const std::string systemEntry = "system/autostart/org.tavrin.Tavrin.desktop";

class LoginItemTest : public testing::Test {
protected:
    LoginItemTest() {
        program = writeProgram("opt/my apps/100% \"tavrin\"");
        writeProgram("bin/tavrin");
        directory.write("bin/no-program", "");
        fs::create_directories(directory.path() / "bin/folder");
        variables.set("XDG_CONFIG_HOME", path("config"));
        variables.set("XDG_CONFIG_DIRS", path("none") + ":" + path("system"));
        variables.set("PATH", path("bin"));
        variables.set("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    }
    fs::path writeProgram(const std::string& name) {
        const auto path = directory.write(name, "#!/bin/sh\n");
        fs::permissions(path, fs::perms::owner_all);
        return path;
    }
    AutostartLoginItem item() { return {files, program}; }
    std::string path(const std::string& name) const { return (directory.path() / name).string(); }

    TemporaryDirectory directory;
    PosixFileSystem files;
    fs::path program;
    EnvironmentChange variables;
};

TEST_F(LoginItemTest, theStatusIsWhatTheSessionWouldDo) {
    const struct {
        const char* keys;
        LoginItemStatus status;
    } cases[] = {
        {"Exec=tavrin", enabled},
        {"Exec=tavrin --flag %U\nTryExec=tavrin\nHidden=false\nX-GNOME-Autostart-enabled=true", enabled},
        {"Exec=@/bin/tavrin\nTryExec=@/bin/tavrin", enabled},
        {"Exec=\"@/bin/tavrin\"\nNoDisplay=true", enabled},
        {"Exec=tavrin\nHidden=true", switchedOff},
        {"Exec=tavrin\nX-GNOME-Autostart-enabled=false", switchedOff},
        {"Exec=tavrin\nX-MATE-Autostart-enabled=false", switchedOff},
        {"Exec=tavrin\nType=Link", notRegistered},
        {"", notFound},
        {"Exec=\"tavrin", notFound},
        {"Exec=gone", notFound},
        {"Exec=no-program", notFound},
        {"Exec=folder", notFound},
        {"Exec=@/bin/gone", notFound},
        {"Exec=bin/tavrin", notFound},
        {"Exec=tavrin\nTryExec=gone", notFound},
        {"Exec=tavrin\nOnlyShowIn=KDE;GNOME;", enabled},
        {"Exec=tavrin\nOnlyShowIn=KDE;", notFound},
        {"Exec=tavrin\nOnlyShowIn=gnome;", notFound},
        {"Exec=tavrin\nNotShowIn=KDE;", enabled},
        {"Exec=tavrin\nNotShowIn=KDE;GNOME", notFound},
        {"Exec=tavrin\nNotShowIn=GNOME;\nOnlyShowIn=ubuntu;", enabled},
    };
    const auto oldFolder = fs::current_path();
    fs::current_path(directory.path()); // relative paths would lead to a program from here
    auto item = this->item();
    EXPECT_EQ(item.status(), notRegistered);
    for (const auto& [keys, status] : cases) {
        std::string text = keys;
        for (auto at = text.find('@'); at != std::string::npos; at = text.find('@'))
            text.replace(at, 1, directory.path().string());
        directory.write(userEntry, "[Desktop Entry]\nType=Application\n" + text);
        EXPECT_EQ(item.status(), status) << keys;
    }
    directory.write(userEntry, "nothing of the kind");
    EXPECT_EQ(item.status(), notRegistered);
    fs::current_path(oldFolder);
}

TEST_F(LoginItemTest, registeringKeepsWhatTheUserAdded) {
    directory.write(userEntry,
                    "# mine\n[Desktop Entry]\nType=Application\nName=My Tavrin\nName[de]=Meins\nExec=old\n"
                    "TryExec=old\nHidden=true\nX-GNOME-Autostart-enabled=false\nOnlyShowIn=KDE;\n");
    auto item = this->item();
    ASSERT_TRUE(item.registerItem());
    EXPECT_EQ(item.status(), enabled);
    const auto text = directory.read(userEntry);
    EXPECT_TRUE(text.starts_with("# mine\n"));
    EXPECT_EQ(parseDesktopEntry(text, {"de"})->name, "Meins");
    EXPECT_EQ(parseDesktopEntry(text)->name, "My Tavrin");

    directory.write(userEntry, "[Desktop Entry]\nType=Application\nOnlyShowIn=GNOME;\n");
    ASSERT_TRUE(item.registerItem());
    EXPECT_EQ(parseDesktopEntry(directory.read(userEntry))->onlyShowIn, std::vector<std::string>{"GNOME"});

    directory.write(userEntry, "broken");
    ASSERT_TRUE(item.registerItem());
    EXPECT_EQ(item.status(), enabled);
    const auto entry = parseDesktopEntry(directory.read(userEntry));
    EXPECT_EQ(execWords(entry->exec), std::vector{program.string()});
    EXPECT_EQ(entry->tryExec, program);
    EXPECT_EQ(entry->name, "Tavrin");
    EXPECT_EQ(std::distance(fs::directory_iterator(path("config/autostart")), {}), 1)
        << "nothing else is left";
    ASSERT_TRUE(item.unregisterItem());
    EXPECT_EQ(item.status(), notRegistered);
    EXPECT_TRUE(item.unregisterItem()) << "already gone";
}

TEST_F(LoginItemTest, theUsersEntryHidesOrReplacesTheSystems) {
    directory.write(systemEntry, "[Desktop Entry]\nType=Application\nName=System's\nExec=tavrin\n");
    auto item = this->item();
    EXPECT_EQ(item.status(), enabled);
    ASSERT_TRUE(item.unregisterItem());
    EXPECT_EQ(item.status(), switchedOff);
    EXPECT_TRUE(parseDesktopEntry(directory.read(userEntry))->isHidden);
    EXPECT_TRUE(fs::exists(path(systemEntry)));

    ASSERT_TRUE(item.registerItem());
    EXPECT_EQ(item.status(), enabled);
    EXPECT_EQ(parseDesktopEntry(directory.read(userEntry))->name, "System's");

    fs::remove(path(userEntry));
    fs::create_symlink("/dev/null", path(userEntry));
    EXPECT_EQ(item.status(), notRegistered);
}

} // namespace
} // namespace tavrin

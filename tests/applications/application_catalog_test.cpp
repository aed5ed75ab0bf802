#include "../posix/temporary_directory.h"
#include "base/text.h"
#include "platform/applications/freedesktop_application_catalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <latch>
#include <ranges>
#include <sys/stat.h>
#include <thread>

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Directories = std::vector<fs::path>;

std::string entry(const std::string& name, const std::string& keys) {
    return "[Desktop Entry]\nType=Application\nName=" + name + "\n" + keys;
}

/// What a well-filled computer has installed: a name and the keys of its entry.
constexpr std::string_view installedApplications = R"(
debian-xterm | Exec=xterm | StartupWMClass=XTerm | Categories=System;TerminalEmulator; | Icon=mini.xterm
debian-uxterm | Exec=uxterm | StartupWMClass=UXTerm | Categories=System;TerminalEmulator;
htop | Exec=htop | Terminal=true
mc | Exec=xterm -e mc
org.gnome.Nautilus | Exec=nautilus --new-window %U | Categories=GNOME;FileManager;
org.gnome.Terminal | Exec=gnome-terminal | Categories=TerminalEmulator;
terminator | Exec=terminator | Categories=TerminalEmulator;
org.xfce.mousepad | Exec=mousepad %U
org.xfce.mousepad-settings | Exec=mousepad --preferences
org.kde.kate | Exec=kate -b %U
firefox | Exec=firefox %u | StartupWMClass=firefox
org.mozilla.firefox | Exec=/usr/bin/flatpak run --command=firefox org.mozilla.firefox |
    StartupWMClass=org.mozilla.firefox | X-Flatpak=org.mozilla.firefox
firefox_firefox | Exec=env BAMF=/x /snap/bin/firefox %u | X-SnapInstanceName=firefox | NoDisplay=true
thunderbird_tb | Exec=/snap/bin/tb | X-SnapInstanceName=thunderbird
firefox-esr | Exec=/usr/lib/firefox-esr/firefox-esr %u | StartupWMClass=Firefox-esr
google-chrome | Exec=/usr/bin/google-chrome-stable %U | StartupWMClass=Google-chrome
com.google.Chrome | Exec=/usr/bin/google-chrome-stable %U | StartupWMClass=Google-chrome | NoDisplay=true
chrome-cifh-Default | Exec=/opt/google/chrome/google-chrome --app-id=cifh | StartupWMClass=crx_cifh
libreoffice-writer | Exec=libreoffice --writer %U | StartupWMClass=libreoffice-writer
libreoffice-calc | Exec=libreoffice --calc %U | StartupWMClass=libreoffice-calc
org.libreoffice.LibreOffice | Exec=/usr/bin/flatpak run org.libreoffice.LibreOffice
org.libreoffice.LibreOffice.calc | Exec=/usr/bin/flatpak run org.libreoffice.LibreOffice --calc |
    StartupWMClass=libreoffice-calc
code | Exec=/usr/share/code/code %F | StartupWMClass=Code | Categories=Development;IDE;
code-url-handler | Exec=/usr/share/code/code --open-url %U | StartupWMClass=Code | NoDisplay=true
steam | Exec=/usr/games/steam %U | Categories=Game;
openjdk | Exec=java -jar | NoDisplay=true
weird | Exec=/opt/weird/start.sh
gimp | Exec=gimp-2.10 %U
python3.11 | Exec=/usr/bin/python3.11 | Terminal=true | NoDisplay=true
text-editor | Exec=textual | Terminal=true
a-mousepad-page | Exec=mousepad | StartupWMClass=Page
a-gimp-page | Exec=gimp-2.10 | StartupWMClass=Page
a.flatpak.Calc | Exec=flatpak run a.flatpak.Calc | StartupWMClass=libreoffice-calc
folder/nested | Exec=nested
gone | Exec=gone | Hidden=true
website | Type=Link | URL=http://x
)";

/// Windows and the identifier each must get: situation | declared identifier | instance | class | identifier,
/// and where it counts the process as "unit program, words < parent"; a parent without a unit has its
/// child's.
constexpr std::string_view windows = R"(
declared | org.gnome.Nautilus | x | XTerm | org.gnome.Nautilus.desktop
declared with extension | org.gnome.Nautilus.desktop | | | org.gnome.Nautilus.desktop
declared as a path | /usr/share/applications/org.kde.kate.desktop | | | org.kde.kate.desktop
declared in another case | org.gnome.nautilus | | | org.gnome.Nautilus.desktop
declared but not installed | org.example.None | mousepad | Mousepad | org.xfce.mousepad.desktop
declared but hidden | gone | gone | Gone | gone.Gone

StartupWMClass | | xterm | XTerm | debian-xterm.desktop
StartupWMClass in another case | | x | xterm | debian-xterm.desktop
an own name for the terminal | | my-xterm | XTerm | debian-xterm.desktop
last part of the name | | nautilus | Nautilus | org.gnome.Nautilus.desktop
program, the entry without arguments | | mousepad | Mousepad | org.xfce.mousepad.desktop
program with spaces | | gnome-terminal-server | Gnome terminal | org.gnome.Terminal.desktop
program with version | | gimp-2.10 | Gimp-2.10 | gimp.desktop
the instance is a web application | | crx_cifh | Google-chrome | chrome-cifh-Default.desktop
the browser itself, one shown twice | | google-chrome | Google-chrome | google-chrome.desktop
another class of a program that announces its own | | firefox-esr | x | firefox-esr.desktop
one of an office | | libreoffice | libreoffice-calc | libreoffice-calc.desktop
not the handler of links | | code | Code | code.desktop
in a folder | | nested | Nested | folder-nested.desktop
named like a program in a terminal | | python3.11 | x | python3.11.desktop
a program in a terminal has no window | | textual | Textual | textual.Textual
an interpreter is no application | | java | Java | java.Java
a link is no application | | website | Website | website.Website
nothing installed | | tool | Tool | tool.Tool
instance only | | tool | | tool
class only | | | Tool | Tool

started by GNOME | | Navigator | firefox | firefox.desktop | app-gnome-firefox-99.scope /x/firefox
two fit, it was started as one | | libreoffice-calc | libreoffice-writer | libreoffice-writer.desktop |
    app-gnome-libreoffice\x2dwriter-9.scope /x/soffice.bin
odd class, started by KDE | | main | Main | weird.desktop | app-weird@0123abcd.service /opt/weird/bin
odd class, older KDE | | main | Main | weird.desktop | app-weird-0123abcd.scope /opt/weird/bin
odd class, started at login | | main | Main | weird.desktop | app-weird@autostart.service /opt/weird/bin
odd class, plain dashes | | main | Main | google-chrome.desktop | app-google-chrome-12.scope /opt/chrome
started by the bus | | main | Main | org.kde.kate.desktop | app-dbus.slice/dbus-:1.2-org.kde.kate@0.service /x
odd class, behind its script | | main | Main | weird.desktop |
    app-weird-1.scope /opt/weird/bin < /usr/bin/bash, bash, /opt/weird/start.sh
odd class, started again by itself | | main | Main | weird.desktop |
    app-weird-1.scope /opt/weird/bin < app-weird-0.scope /opt/weird/start.sh
started as something unknown | | tool | Tool | tool.Tool | app-nothing-1.scope /x/nothing

the terminal itself | | xterm | XTerm | debian-xterm.desktop | app-debian\x2dxterm-1.scope /usr/bin/xterm
installed, from a terminal | | mousepad | Mousepad | org.xfce.mousepad.desktop |
    app-debian\x2dxterm-1.scope /usr/bin/mousepad < /usr/bin/bash < /usr/bin/xterm
not installed, from a terminal | | tool | Tool | tool.Tool |
    app-debian\x2dxterm-1.scope /home/me/tool < /usr/bin/bash < /usr/bin/xterm
odd class, from a terminal, known by its program | | main | Main | org.kde.kate.desktop |
    app-debian\x2dxterm-1.scope /usr/bin/kate < /usr/bin/bash < /usr/bin/xterm
from a file manager | | tool | Tool | tool.Tool | app-org.gnome.Nautilus-1.scope /x/tool
from a development environment | | tool | Tool | tool.Tool | app-code-1.scope /x/tool
from a script that is a terminal | | tool | Tool | tool.Tool |
    app-terminator-1.scope /x/tool < /usr/bin/python3.11, python3, /usr/bin/terminator
from a game launcher | | steam_app_5 | steam_app_5 | steam_app_5.steam_app_5 |
    app-steam@1.service /x/game < /home/me/.steam/steam
a tab of a terminal | | tool | Tool | tool.Tool | app-org.gnome.Terminal.slice/vte-spawn-1-2.scope /x/tool

Flatpak beside the installed one | | Navigator | firefox | org.mozilla.firefox.desktop |
    app-flatpak-org.mozilla.firefox-77.scope /app/firefox
one of several of a Flatpak | | libreoffice | libreoffice-calc | org.libreoffice.LibreOffice.calc.desktop |
    app-flatpak-org.libreoffice.LibreOffice-7.scope /app/soffice.bin
snap beside the installed one | | Navigator | firefox | firefox_firefox.desktop |
    snap.firefox.firefox-01234567-89ab-cdef-0123-456789abcdef.scope /snap/firefox/1/firefox
snap with another name for its entry | | Mail | odd | thunderbird_tb.desktop |
    snap.thunderbird.thunderbird.01234567-89ab-cdef-0123-456789abcdef.scope /snap/x

no class, known by its program | | | | org.kde.kate.desktop | init.scope /usr/bin/kate
no class, a script | | | | terminator.desktop | init.scope /usr/bin/python3.11, python3, -u, /usr/bin/terminator
no class, an updated program | | | | org.kde.kate.desktop | init.scope /usr/bin/kate (deleted), renamed
no class, unknown program | | | | tool | init.scope /x/tool
)";

/// The parts of a text between separators, without the spaces around them.
std::vector<std::string> split(std::string_view text, std::string_view separator) {
    std::vector<std::string> parts;
    for (const auto part : std::views::split(text, separator))
        parts.push_back(trimmed(std::string_view(part.begin(), part.end())));
    return parts;
}

/// The rows of a table; a row that ends with the separator goes on in the next line.
std::vector<std::vector<std::string>> rows(std::string_view table) {
    std::vector<std::vector<std::string>> rows;
    bool goesOn = false;
    for (const auto& line : split(table, "\n")) {
        if (line.empty())
            continue;
        if (goesOn)
            rows.back().pop_back();
        else
            rows.emplace_back();
        for (auto& cell : split(line, "|"))
            rows.back().push_back(std::move(cell));
        goesOn = line.ends_with('|');
    }
    return rows;
}

void installApplications(const TemporaryDirectory& share) {
    for (const auto& row : rows(installedApplications)) {
        auto text = entry(row.front(), "");
        for (const auto& key : row | std::views::drop(1))
            text += key + "\n";
        share.write("applications/" + row.front() + ".desktop", text);
    }
}

/// Process files as the kernel shows them.
class ProcessFiles {
public:
    ProcessID add(const std::string& process, const std::string& childsUnit = "") {
        const auto end = std::min(process.find(" < "), process.size());
        auto words = split(process.substr(0, end), ", ");
        auto unit = childsUnit;
        if (!process.starts_with('/')) {
            unit = process.substr(0, process.find(' '));
            words.front().erase(0, unit.size() + 1);
        }
        const auto parent = end == process.size() ? 1 : add(process.substr(end + 3), unit);
        const auto program = words.front();
        if (words.size() > 1)
            words.erase(words.begin());
        const auto pid = next_++;
        const auto directory = std::to_string(pid);
        files_.write(directory + "/stat", directory + " (a) b ) S " + std::to_string(parent) +
                                              " 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 4711 0 0");
        files_.write(directory + "/cgroup", "12:cpu:/app-wrong-1.scope\n0::/user.slice/user-1000.slice/"
                                            "user@1000.service/app.slice/" +
                                                unit + "\n");
        std::string line;
        for (const auto& word : words)
            line += word + '\0';
        files_.write(directory + "/cmdline", line);
        fs::create_symlink(program, files_.path() / directory / "exe");
        return pid;
    }
    const TemporaryDirectory& files() const { return files_; }

private:
    TemporaryDirectory files_;
    ProcessID next_ = 100;
};

class ApplicationCatalogTest : public testing::Test {
protected:
    TemporaryDirectory share;
    ProcessFiles processes;
    std::chrono::steady_clock::time_point now;

    FreedesktopApplicationCatalog catalog(const Directories& directories,
                                          std::vector<std::string> locales = {}) {
        return FreedesktopApplicationCatalog(
            DesktopEntryIndex(directories, std::move(locales), 1s, [this] { return now; }),
            processes.files().path());
    }
    FreedesktopApplicationCatalog catalog() { return catalog({share.path() / "applications"}); }
};

TEST_F(ApplicationCatalogTest, windowsOfUsualApplicationsFindTheirEntry) {
    installApplications(share);
    auto applications = catalog();
    for (const auto& row : rows(windows)) {
        ApplicationClues clues{{}, row.at(1), row.at(2), row.at(3)};
        if (row.size() > 5)
            clues.pid = processes.add(row[5]);
        const auto identity = applications.identify(clues);
        EXPECT_EQ(identity.bundleIdentifier, row.at(4)) << row[0];
        EXPECT_EQ(applications.identify(clues), identity) << row[0];
    }
    EXPECT_EQ(applications.identify({}), ApplicationIdentity());
    EXPECT_EQ(applications.identify({.pid = 4}), ApplicationIdentity());
}

TEST_F(ApplicationCatalogTest, tellsNameAndIconOfTheEntryElseTheClass) {
    share.write("applications/xterm.desktop",
                entry("Terminal", "Name[de]=Konsole\nIcon=terminal\nIcon[de]=konsole"));
    share.write("applications/bare.desktop", "[Desktop Entry]\nType=Application");
    auto applications = catalog({share.path() / "applications"}, {"de"});

    EXPECT_EQ(applications.identify({.instanceName = "xterm", .className = "XTerm"}),
              (ApplicationIdentity{"xterm.desktop", "Konsole", "konsole"}));
    EXPECT_EQ(applications.identify({.instanceName = "bare", .className = "Bare"}),
              (ApplicationIdentity{"bare.desktop", "Bare", std::nullopt}));
    EXPECT_EQ(applications.identify({.instanceName = "other", .className = "Ot\xFFher "}),
              (ApplicationIdentity{"other.Ot\xEF\xBF\xBDher", "Ot\xEF\xBF\xBDher", std::nullopt}));
    EXPECT_EQ(applications.installedApplication("xterm.desktop"),
              (ApplicationIdentity{"xterm.desktop", "Konsole", "konsole"}));
    EXPECT_EQ(applications.installedApplication("bare.desktop").iconName, std::nullopt);
    EXPECT_EQ(applications.installedApplication("other.Other").name, std::nullopt);
}

TEST_F(ApplicationCatalogTest, theUsersEntriesComeBeforeTheSystems) {
    const auto home = share.path() / "home";
    const auto system = share.path() / "system";
    share.write("home/both.desktop", entry("Mine", ""));
    share.write("system/both.desktop", entry("Theirs", ""));
    share.write("home/removed.desktop", "[Desktop Entry]\nHidden=true");
    share.write("system/removed.desktop", entry("Removed", ""));
    share.write("system/broken.desktop", entry("Whole", ""));
    share.write("home/broken.desktop", "no entry at all");
    ASSERT_EQ(::mkfifo((home / "fifo.desktop").c_str(), 0600), 0);
    fs::create_symlink(home, home / "circle");
    fs::create_symlink(share.write("store/deep/inside.desktop", entry("Inside", "")).parent_path(),
                       home / "kit");
    fs::create_symlink(share.write("elsewhere", entry("Linked", "")), system / "linked.desktop");

    auto applications = catalog({home, system, share.path() / "missing"});
    const auto name = [&](const char* instance) {
        return applications.identify({.instanceName = instance, .className = "Class"}).name.value_or("");
    };
    EXPECT_EQ(name("both"), "Mine");
    EXPECT_EQ(name("removed"), "Class");
    EXPECT_EQ(name("broken"), "Whole");
    EXPECT_EQ(name("linked"), "Linked");
    EXPECT_EQ(name("fifo"), "Class");
    EXPECT_EQ(name("kit-inside"), "Inside");
    EXPECT_EQ(name("circle-both"), "Class") << "no folder is read again through a link";
}

TEST_F(ApplicationCatalogTest, noticesWhatIsInstalledLaterAndLooksRarely) {
    auto applications = catalog();
    const ApplicationClues clues{.instanceName = "new", .className = "New"};
    const auto identifier = [&] { return applications.identify(clues).bundleIdentifier.value_or(""); };
    EXPECT_EQ(identifier(), "new.New");

    share.write("applications/sub/other.desktop", entry("Other", "Exec=new"));
    EXPECT_EQ(identifier(), "new.New") << "within the interval";
    now += 1s;
    EXPECT_EQ(identifier(), "sub-other.desktop");
    share.write("applications/sub/new.desktop", entry("New", "StartupWMClass=new"));
    now += 1s;
    EXPECT_EQ(identifier(), "sub-new.desktop");
    // Changed twice in the same tick of the file system's clock.
    const auto directory = share.path() / "applications";
    const auto tick = fs::file_time_type::clock::now() + 1h;
    fs::last_write_time(directory, tick);
    now += 1s;
    EXPECT_EQ(identifier(), "sub-new.desktop");
    share.write("applications/new.desktop", entry("New", "StartupWMClass=new"));
    fs::last_write_time(directory, tick);
    now += 1s;
    EXPECT_EQ(identifier(), "new.desktop");
    fs::remove_all(directory);
    now += 1s;
    EXPECT_EQ(identifier(), "new.New");
}

TEST_F(ApplicationCatalogTest, aNumberUsedAgainIsAnotherProcess) {
    installApplications(share);
    auto applications = catalog();
    const auto pid = processes.add("init.scope /usr/bin/kate");
    const ApplicationClues clues{.pid = pid, .instanceName = "main", .className = "Main"};
    EXPECT_EQ(applications.identify(clues).bundleIdentifier, "org.kde.kate.desktop");

    const auto directory = std::to_string(pid);
    processes.files().write(directory + "/cmdline", "mousepad");
    now += 1s;
    EXPECT_EQ(applications.identify(clues).bundleIdentifier, "org.kde.kate.desktop") << "the same process";
    now += 1s;
    fs::remove(processes.files().path() / directory / "exe");
    processes.files().write(directory + "/stat", "100 (x) S 1 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 9999 0");
    EXPECT_EQ(applications.identify(clues).bundleIdentifier, "org.xfce.mousepad.desktop");
}

TEST_F(ApplicationCatalogTest, aFlatpakIsKnownFromInsideItsSandbox) {
    installApplications(share);
    auto applications = catalog();
    const auto pid = processes.add("session.scope /app/firefox");
    processes.files().write(std::to_string(pid) + "/root/.flatpak-info",
                            "[Instance]\nname=wrong\n[Application]\nruntime=x\nname=org.mozilla.firefox\n");
    EXPECT_EQ(applications.identify({.pid = pid, .instanceName = "Navigator", .className = "firefox"})
                  .bundleIdentifier,
              "org.mozilla.firefox.desktop");
}

// The kernel lets a reader wait for a process whose memory or file system hangs.
TEST_F(ApplicationCatalogTest, aProcessThatCannotBeReadHoldsNobodyUp) {
    installApplications(share);
    std::latch release(1);
    FreedesktopApplicationCatalog applications(
        DesktopEntryIndex({share.path() / "applications"}, {}, 1s, [this] { return now; }),
        processes.files().path(), [&](ProcessID pid) {
            release.wait();
            return processFacts(processes.files().path(), pid);
        });
    std::vector<ApplicationClues> clues;
    for (int i = 0; i < 60; ++i)
        clues.push_back(
            {.pid = processes.add("init.scope /usr/bin/kate"), .instanceName = "main", .className = "Main"});
    const auto begin = std::chrono::steady_clock::now();
    for (const auto& each : clues)
        EXPECT_EQ(applications.identify(each).bundleIdentifier, "main.Main");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 3s); // 60 waits would take 6
    release.count_down();
    // The reads that hung come back in their own time.
    const auto isRight = [&](const auto& each) {
        now += 1s;
        return applications.identify(each).bundleIdentifier == "org.kde.kate.desktop";
    };
    while (!isRight(clues.front()) && std::chrono::steady_clock::now() - begin < 20s)
        std::this_thread::yield();
    for (const auto& each : clues)
        EXPECT_TRUE(isRight(each));
}

} // namespace
} // namespace tavrin

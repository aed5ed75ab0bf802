#include "../posix/temporary_directory.h"
#include "platform/freedesktop/freedesktop_application_catalog.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Directories = std::vector<fs::path>;

std::string entry(const std::string& name, const std::string& keys) {
    return "[Desktop Entry]\nType=Application\nName=" + name + "\n" + keys;
}

/// What a well-filled computer has installed.
void installApplications(const TemporaryDirectory& share) {
    const auto install = [&](const std::string& id, const std::string& keys) {
        share.write("applications/" + id + ".desktop", entry(id, keys));
    };
    install("debian-xterm",
            "Exec=xterm\nStartupWMClass=XTerm\nCategories=System;TerminalEmulator;\nIcon=mini.xterm");
    install("debian-uxterm", "Exec=uxterm\nStartupWMClass=UXTerm\nCategories=System;TerminalEmulator;");
    install("htop", "Exec=htop\nTerminal=true");
    install("mc", "Exec=xterm -e mc");
    install("org.gnome.Nautilus", "Exec=nautilus --new-window %U\nCategories=GNOME;FileManager;");
    install("org.gnome.Terminal", "Exec=gnome-terminal\nCategories=TerminalEmulator;");
    install("terminator", "Exec=terminator\nCategories=TerminalEmulator;");
    install("org.xfce.mousepad", "Exec=mousepad %U");
    install("org.xfce.mousepad-settings", "Exec=mousepad --preferences");
    install("org.kde.kate", "Exec=kate -b %U");
    install("firefox", "Exec=firefox %u\nStartupWMClass=firefox");
    install("org.mozilla.firefox", "Exec=/usr/bin/flatpak run --command=firefox org.mozilla.firefox\n"
                                   "StartupWMClass=org.mozilla.firefox\nX-Flatpak=org.mozilla.firefox");
    install("firefox_firefox",
            "Exec=env BAMF=/x /snap/bin/firefox %u\nX-SnapInstanceName=firefox\nNoDisplay=true");
    install("thunderbird_tb", "Exec=/snap/bin/tb\nX-SnapInstanceName=thunderbird");
    install("firefox-esr", "Exec=/usr/lib/firefox-esr/firefox-esr %u\nStartupWMClass=Firefox-esr");
    install("google-chrome", "Exec=/usr/bin/google-chrome-stable %U\nStartupWMClass=Google-chrome");
    install("com.google.Chrome",
            "Exec=/usr/bin/google-chrome-stable %U\nStartupWMClass=Google-chrome\nNoDisplay=true");
    install("chrome-cifh-Default",
            "Exec=/opt/google/chrome/google-chrome --app-id=cifh\nStartupWMClass=crx_cifh");
    install("libreoffice-writer", "Exec=libreoffice --writer %U\nStartupWMClass=libreoffice-writer");
    install("libreoffice-calc", "Exec=libreoffice --calc %U\nStartupWMClass=libreoffice-calc");
    install("org.libreoffice.LibreOffice", "Exec=/usr/bin/flatpak run org.libreoffice.LibreOffice");
    install("org.libreoffice.LibreOffice.calc",
            "Exec=/usr/bin/flatpak run org.libreoffice.LibreOffice --calc\n"
            "StartupWMClass=libreoffice-calc");
    install("code", "Exec=/usr/share/code/code %F\nStartupWMClass=Code\nCategories=Development;IDE;");
    install("code-url-handler",
            "Exec=/usr/share/code/code --open-url %U\nStartupWMClass=Code\nNoDisplay=true");
    install("steam", "Exec=/usr/games/steam %U\nCategories=Game;");
    install("openjdk", "Exec=java -jar\nNoDisplay=true");
    install("weird", "Exec=/opt/weird/start.sh");
    install("gimp", "Exec=gimp-2.10 %U");
    install("python3.11", "Exec=/usr/bin/python3.11\nTerminal=true\nNoDisplay=true");
    install("text-editor", "Exec=textual\nTerminal=true");
    install("a-mousepad-page", "Exec=mousepad\nStartupWMClass=Page");
    install("a-gimp-page", "Exec=gimp-2.10\nStartupWMClass=Page");
    install("a.flatpak.Calc", "Exec=flatpak run a.flatpak.Calc\nStartupWMClass=libreoffice-calc");
    install("folder/nested", "Exec=nested");
    install("gone", "Exec=gone\nHidden=true");
    share.write("applications/website.desktop", "[Desktop Entry]\nType=Link\nName=Site\nURL=http://x");
}

struct Process {
    std::string cgroup;  ///< the unit
    std::string program; ///< the file it executes
    std::vector<std::string> words = {};
    std::vector<Process> parent = {}; ///< at most one
};

/// Process files as the kernel shows them.
class ProcessFiles {
public:
    ProcessID add(const Process& process) const {
        const auto parent = process.parent.empty() ? 1 : add(process.parent.front());
        const auto pid = next_++;
        const auto directory = std::to_string(pid);
        files_.write(directory + "/stat", std::to_string(pid) + " (a) b ) S " + std::to_string(parent) +
                                              " 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 4711 0 0");
        files_.write(directory + "/cgroup", "12:cpu:/app-wrong-1.scope\n0::/user.slice/user-1000.slice/"
                                            "user@1000.service/app.slice/" +
                                                process.cgroup + "\n");
        std::string line;
        for (const auto& word : process.words.empty() ? std::vector{process.program} : process.words)
            line += word + '\0';
        files_.write(directory + "/cmdline", line);
        fs::create_symlink(process.program, files_.path() / directory / "exe");
        return pid;
    }
    const TemporaryDirectory& files() const { return files_; }

private:
    TemporaryDirectory files_;
    mutable ProcessID next_ = 100;
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
    const Process xterm{"app-debian\\x2dxterm-1.scope", "/usr/bin/xterm"};
    const Process shell{"app-debian\\x2dxterm-1.scope", "/usr/bin/bash", {}, {xterm}};
    const auto inXterm = [&](const std::string& program) {
        return Process{"app-debian\\x2dxterm-1.scope", program, {}, {shell}};
    };
    struct Case {
        const char* situation;
        Process process;
        const char* applicationID;
        const char* instance;
        const char* name;
        const char* identifier; ///< without ".desktop" for an installed application
        bool isInstalled = true;
    };
    const Case cases[] = {
        // Declared by the application.
        {"declared", {}, "org.gnome.Nautilus", "x", "XTerm", "org.gnome.Nautilus"},
        {"declared with extension", {}, "org.gnome.Nautilus.desktop", "", "", "org.gnome.Nautilus"},
        {"declared as a path", {}, "/usr/share/applications/org.kde.kate.desktop", "", "", "org.kde.kate"},
        {"declared in another case", {}, "org.gnome.nautilus", "", "", "org.gnome.Nautilus"},
        {"declared but not installed", {}, "org.example.None", "mousepad", "Mousepad", "org.xfce.mousepad"},
        {"declared but hidden", {}, "gone", "gone", "Gone", "gone.Gone", false},
        // Window classes alone.
        {"StartupWMClass", {}, "", "xterm", "XTerm", "debian-xterm"},
        {"StartupWMClass in another case", {}, "", "x", "xterm", "debian-xterm"},
        {"an own name for the terminal", {}, "", "my-xterm", "XTerm", "debian-xterm"},
        {"last part of the name", {}, "", "nautilus", "Nautilus", "org.gnome.Nautilus"},
        {"program, the entry without arguments", {}, "", "mousepad", "Mousepad", "org.xfce.mousepad"},
        {"program with spaces", {}, "", "gnome-terminal-server", "Gnome terminal", "org.gnome.Terminal"},
        {"program with version", {}, "", "gimp-2.10", "Gimp-2.10", "gimp"},
        {"the instance is a web application", {}, "", "crx_cifh", "Google-chrome", "chrome-cifh-Default"},
        {"the browser itself, one shown twice", {}, "", "google-chrome", "Google-chrome", "google-chrome"},
        {"another class of a program that announces its own", {}, "", "firefox-esr", "x", "firefox-esr"},
        {"one of an office", {}, "", "libreoffice", "libreoffice-calc", "libreoffice-calc"},
        {"not the handler of links", {}, "", "code", "Code", "code"},
        {"in a folder", {}, "", "nested", "Nested", "folder-nested"},
        {"named like a program in a terminal", {}, "", "python3.11", "x", "python3.11"},
        {"a program in a terminal has no window", {}, "", "textual", "Textual", "textual.Textual", false},
        {"an interpreter is no application", {}, "", "java", "Java", "java.Java", false},
        {"a link is no application", {}, "", "website", "Website", "website.Website", false},
        {"nothing installed", {}, "", "tool", "Tool", "tool.Tool", false},
        // What the process was started as.
        {"started by GNOME",
         {"app-gnome-firefox-99.scope", "/x/firefox"},
         "",
         "Navigator",
         "firefox",
         "firefox"},
        {"two fit, it was started as one",
         {"app-gnome-libreoffice\\x2dwriter-9.scope", "/x/soffice.bin"},
         "",
         "libreoffice-calc",
         "libreoffice-writer",
         "libreoffice-writer"},
        {"odd class, started by KDE",
         {"app-weird@0123abcd.service", "/opt/weird/bin"},
         "",
         "main",
         "Main",
         "weird"},
        {"odd class, older KDE", {"app-weird-0123abcd.scope", "/opt/weird/bin"}, "", "main", "Main", "weird"},
        {"odd class, started at login",
         {"app-weird@autostart.service", "/opt/weird/bin"},
         "",
         "main",
         "Main",
         "weird"},
        {"odd class, unescaped dashes",
         {"app-google-chrome-12.scope", "/opt/chrome"},
         "",
         "main",
         "Main",
         "google-chrome"},
        {"odd class, started by the bus",
         {"app-dbus.slice/dbus-:1.2-org.kde.kate@0.service", "/x"},
         "",
         "main",
         "Main",
         "org.kde.kate"},
        {"odd class, behind its script",
         {"app-weird-1.scope",
          "/opt/weird/bin",
          {},
          {{"app-weird-1.scope", "/usr/bin/bash", {"bash", "/opt/weird/start.sh"}}}},
         "",
         "main",
         "Main",
         "weird"},
        {"odd class, started again by itself",
         {"app-weird-1.scope", "/opt/weird/bin", {}, {{"app-weird-0.scope", "/opt/weird/start.sh"}}},
         "",
         "main",
         "Main",
         "weird"},
        {"started as something unknown",
         {"app-nothing-1.scope", "/x/nothing"},
         "",
         "tool",
         "Tool",
         "tool.Tool",
         false},
        // Programs started from others live in their scope.
        {"the terminal itself", xterm, "", "xterm", "XTerm", "debian-xterm"},
        {"installed, from a terminal", inXterm("/usr/bin/mousepad"), "", "mousepad", "Mousepad",
         "org.xfce.mousepad"},
        {"not installed, from a terminal", inXterm("/home/me/tool"), "", "tool", "Tool", "tool.Tool", false},
        {"odd class, from a terminal, known by its program", inXterm("/usr/bin/kate"), "", "main", "Main",
         "org.kde.kate"},
        {"from a file manager",
         {"app-org.gnome.Nautilus-1.scope", "/x/tool"},
         "",
         "tool",
         "Tool",
         "tool.Tool",
         false},
        {"from a development environment",
         {"app-code-1.scope", "/x/tool"},
         "",
         "tool",
         "Tool",
         "tool.Tool",
         false},
        {"from a script that is a terminal",
         {"app-terminator-1.scope",
          "/x/tool",
          {},
          {{"app-terminator-1.scope", "/usr/bin/python3.11", {"python3", "/usr/bin/terminator"}}}},
         "",
         "tool",
         "Tool",
         "tool.Tool",
         false},
        {"from a game launcher",
         {"app-steam@1.service", "/x/game", {}, {{"app-steam@1.service", "/home/me/.steam/steam"}}},
         "",
         "steam_app_5",
         "steam_app_5",
         "steam_app_5.steam_app_5",
         false},
        {"a tab of a terminal",
         {"app-org.gnome.Terminal.slice/vte-spawn-1-2.scope", "/x/tool"},
         "",
         "tool",
         "Tool",
         "tool.Tool",
         false},
        // Sandboxes.
        {"Flatpak beside the installed one",
         {"app-flatpak-org.mozilla.firefox-77.scope", "/app/firefox"},
         "",
         "Navigator",
         "firefox",
         "org.mozilla.firefox"},
        {"one of several of a Flatpak",
         {"app-flatpak-org.libreoffice.LibreOffice-7.scope", "/app/soffice.bin"},
         "",
         "libreoffice",
         "libreoffice-calc",
         "org.libreoffice.LibreOffice.calc"},
        {"snap beside the installed one",
         {"snap.firefox.firefox-01234567-89ab-cdef-0123-456789abcdef.scope", "/snap/firefox/1/firefox"},
         "",
         "Navigator",
         "firefox",
         "firefox_firefox"},
        {"snap with another name for its entry",
         {"snap.thunderbird.thunderbird.01234567-89ab-cdef-0123-456789abcdef.scope", "/snap/x"},
         "",
         "Mail",
         "odd",
         "thunderbird_tb"},
        // Nothing but the process.
        {"no class, known by its program", {"init.scope", "/usr/bin/kate"}, "", "", "", "org.kde.kate"},
        {"no class, a script",
         {"init.scope", "/usr/bin/python3.11", {"python3", "-u", "/usr/bin/terminator"}},
         "",
         "",
         "",
         "terminator"},
        {"no class, an updated program",
         {"init.scope", "/usr/bin/kate (deleted)", {"renamed"}},
         "",
         "",
         "",
         "org.kde.kate"},
        {"no class, unknown program", {"init.scope", "/x/tool"}, "", "", "", "tool", false},
        {"instance only", {}, "", "tool", "", "tool", false},
        {"class only", {}, "", "", "Tool", "Tool", false},
    };
    auto applications = catalog();
    for (const auto& test : cases) {
        ApplicationClues clues{{}, test.applicationID, test.instance, test.name};
        if (!test.process.program.empty())
            clues.pid = processes.add(test.process);
        const auto identity = applications.identify(clues);
        EXPECT_EQ(identity.bundleIdentifier,
                  test.identifier + std::string(test.isInstalled ? ".desktop" : ""))
            << test.situation;
        EXPECT_EQ(applications.identify(clues), identity) << test.situation;
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
    EXPECT_EQ(applications.iconName("xterm.desktop"), "konsole");
    EXPECT_EQ(applications.iconName("bare.desktop"), std::nullopt);
    EXPECT_EQ(applications.iconName("other.Other"), std::nullopt);
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
    EXPECT_EQ(name("circle-both"), "Class");
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
    const auto pid = processes.add({"init.scope", "/usr/bin/kate"});
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
    const auto pid = processes.add({"session.scope", "/app/firefox"});
    processes.files().write(std::to_string(pid) + "/root/.flatpak-info",
                            "[Instance]\nname=wrong\n[Application]\nruntime=x\nname=org.mozilla.firefox\n");
    EXPECT_EQ(applications.identify({.pid = pid, .instanceName = "Navigator", .className = "firefox"})
                  .bundleIdentifier,
              "org.mozilla.firefox.desktop");
}

} // namespace
} // namespace tavrin

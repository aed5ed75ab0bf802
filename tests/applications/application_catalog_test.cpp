#include "../posix/temporary_directory.h"
#include "base/text.h"
#include "platform/applications/freedesktop_application_catalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
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

/// The parts of a text between separators, without the spaces around them.
std::vector<std::string> split(std::string_view text, std::string_view separator) {
    std::vector<std::string> parts;
    for (const auto part : std::views::split(text, separator))
        parts.push_back(trimmed(std::string_view(part.begin(), part.end())));
    return parts;
}

/// The rows of a file beside this one; a row that ends with the separator goes on in the next line.
std::vector<std::vector<std::string>> rows(const std::string& table) {
    std::vector<std::vector<std::string>> rows;
    std::ifstream file(fs::path(TAVRIN_TEST_SOURCES) / "applications" / table);
    EXPECT_TRUE(file) << table;
    bool goesOn = false;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.starts_with('#'))
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
    for (const auto& row : rows("installed.table")) {
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
    for (const auto& row : rows("windows.table")) {
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

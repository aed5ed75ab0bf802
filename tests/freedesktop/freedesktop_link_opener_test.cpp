#include "platform/freedesktop/freedesktop_link_opener.h"
#include "private_bus.h"

#include <QDBusUnixFileDescriptor>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrin {
namespace {

namespace fs = std::filesystem;

class LinkOpenerTest : public testing::Test {
protected:
    LinkOpenerTest() {
        testApplication();
        page = directory.write("help & $(page).html", "<p>");
        folder = directory.path() / "a folder%\xC3\xA9";
        fs::create_directory(folder);
        ::mkfifo(fifo.c_str(), 0600);
        opened = ::open(fifo.c_str(), O_RDWR | O_CLOEXEC);
    }
    ~LinkOpenerTest() override { ::close(opened); }

    /// The program that opens things notes what it was called with.
    void installXdgOpen() {
        const auto program =
            directory.write("bin/xdg-open", "#!/bin/sh\nprintf '%s|' $# \"$@\" > '" + fifo.string() + "'\n");
        fs::permissions(program, fs::perms::owner_all);
    }
    /// What the program was called with: the number of arguments, then each.
    std::string openedByProgram() const {
        pollfd waiting{opened, POLLIN, 0};
        if (::poll(&waiting, 1, 10'000) != 1)
            return "nothing";
        std::string text(1000, '\0');
        text.resize(static_cast<std::size_t>(std::max<ssize_t>(::read(opened, text.data(), text.size()), 0)));
        return text;
    }
    FreedesktopLinkOpener opener(std::optional<std::string> address) const {
        return {page, std::move(address), [this](const std::string& name) {
                    return name == "PATH" ? std::optional((directory.path() / "bin").string()) : std::nullopt;
                }};
    }

    TemporaryDirectory directory;
    const fs::path fifo = directory.path() / "opened";
    fs::path page;
    fs::path folder;
    int opened = -1;
};

TEST_F(LinkOpenerTest, withoutABusTheProgramOpensWhatIsThere) {
    EXPECT_FALSE(opener(std::nullopt).openAccessibilitySettings());
    EXPECT_FALSE(opener(std::nullopt).openFolder(folder));
    installXdgOpen();
    auto opener = this->opener(std::nullopt);
    EXPECT_TRUE(opener.openAccessibilitySettings());
    EXPECT_EQ(openedByProgram(), "1|" + page.string() + "|");
    EXPECT_TRUE(opener.openFolder(folder));
    EXPECT_EQ(openedByProgram(), "1|" + folder.string() + "|");
    for (const auto& path : {directory.path() / "missing", page, fs::path("relative")})
        EXPECT_FALSE(opener.openFolder(path)) << path;
    fs::remove(page);
    EXPECT_FALSE(opener.openAccessibilitySettings());
}

TEST_F(LinkOpenerTest, theFileManagerShowsFoldersAndTheProgramStepsIn) {
    installXdgOpen();
    PrivateBus bus;
    StandInService fileManager(bus, "org.freedesktop.FileManager1");
    fileManager.answers["ShowFolders"] = [](const QDBusMessage&) { return QVariantList(); };
    auto opener = this->opener(bus.address());
    EXPECT_TRUE(opener.openFolder(folder));
    ASSERT_TRUE(waitUntil([&] { return !fileManager.calls.empty(); }));
    const auto uri = "file://" + directory.path().string() + "/a%20folder%25%C3%A9";
    EXPECT_EQ(fileManager.calls.front().arguments().first().toStringList(),
              QStringList(QString::fromStdString(uri)));

    fileManager.answers.clear(); // it cannot do it after all
    EXPECT_TRUE(opener.openFolder(folder));
    ASSERT_TRUE(waitUntil([&] {
        pollfd waiting{opened, POLLIN, 0};
        return fileManager.calls.size() == 2 && ::poll(&waiting, 1, 100) == 1;
    }));
    EXPECT_EQ(openedByProgram(), "1|" + folder.string() + "|");
}

TEST_F(LinkOpenerTest, thePortalOpensWhatTheProgramCannot) {
    PrivateBus bus;
    StandInService portal(bus, "org.freedesktop.portal.Desktop");
    auto opener = this->opener(bus.address());
    const auto expectOpened = [&](const char* method, const fs::path& path) {
        ASSERT_TRUE(waitUntil([&] { return !portal.calls.empty(); }));
        EXPECT_EQ(portal.calls.front().member(), method);
        const auto file = portal.calls.front().arguments().at(1).value<QDBusUnixFileDescriptor>();
        EXPECT_EQ(fs::read_symlink("/proc/self/fd/" + std::to_string(file.fileDescriptor())), path);
        portal.calls.clear();
    };
    EXPECT_TRUE(opener.openAccessibilitySettings());
    expectOpened("OpenFile", page);
    EXPECT_TRUE(opener.openFolder(folder));
    expectOpened("OpenDirectory", folder);
}

} // namespace
} // namespace tavrin

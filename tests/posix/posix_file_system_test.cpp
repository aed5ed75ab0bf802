#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_wall_clock.h"
#include "storage/settings_store.h"
#include "temporary_directory.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrin {
namespace {

namespace fs = std::filesystem;

class PosixFileSystemTest : public testing::Test {
protected:
    TemporaryDirectory directory;
    PosixFileSystem files;

    fs::path at(const std::string& name) const { return directory.path() / name; }

    static unsigned mode(const fs::path& path) {
        struct stat status{};
        return ::lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0U;
    }

    template <class Value>
    static int code(const std::expected<Value, FileError>& result) {
        return result ? 0 : result.error().code;
    }
};

TEST_F(PosixFileSystemTest, aWrittenFileReadsBackAndIsPrivate) {
    const auto oldMask = ::umask(0);
    std::string bytes(300'000, 'x'); // more than one piece
    bytes[1234] = '\0';
    const bool written = files.writeFlushed(at("file"), bytes).has_value();
    const bool made = files.createDirectories(at("one/two/three/")).has_value();
    ::umask(oldMask);

    ASSERT_TRUE(written && made);
    EXPECT_EQ(files.read(at("file")), bytes);
    EXPECT_EQ(mode(at("file")), 0600U);
    EXPECT_EQ(mode(at("one")), 0700U);
    EXPECT_EQ(mode(at("one/two/three")), 0700U);
    EXPECT_TRUE(files.createDirectories(at("one/two")));
    EXPECT_TRUE(files.flushDirectory(at("one/two")));
}

TEST_F(PosixFileSystemTest, writingReplacesWhatStandsThereInsteadOfWritingThroughIt) {
    const auto precious = directory.write("precious", "keep me");
    fs::create_symlink(precious, at("link"));
    fs::create_hard_link(precious, at("hard"));
    ASSERT_EQ(::mkfifo(at("fifo").c_str(), 0666), 0);
    ::chmod(precious.c_str(), 0644);

    for (const auto* name : {"link", "hard", "fifo"}) {
        EXPECT_TRUE(files.writeFlushed(at(name), "new")) << name;
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(at(name)))) << name;
        EXPECT_EQ(mode(at(name)), 0600U) << name;
        EXPECT_EQ(directory.read(name), "new") << name;
    }
    EXPECT_EQ(directory.read("precious"), "keep me");
}

TEST_F(PosixFileSystemTest, readsOnlyRegularFilesAndNeverHangs) {
    fs::create_directory(at("folder"));
    ASSERT_EQ(::mkfifo(at("fifo").c_str(), 0600), 0);
    fs::create_symlink("circle", at("circle"));
    directory.write("file", "text");
    fs::create_symlink("file", at("link"));

    EXPECT_EQ(files.read(at("link")), "text");
    EXPECT_EQ(code(files.read(at("missing"))), ENOENT);
    EXPECT_EQ(code(files.read(at("folder"))), EISDIR);
    EXPECT_EQ(code(files.read(at("fifo"))), EINVAL);
    EXPECT_EQ(code(files.read(at("circle"))), ELOOP);
    EXPECT_EQ(code(files.read("/dev/zero")), EINVAL);
    EXPECT_EQ(code(files.read(fs::path(at("file").string() + std::string("\0x", 2)))), EINVAL);

    const auto error = files.read(at("missing")).error();
    EXPECT_EQ(error.description(), "open " + at("missing").string() + ": No such file or directory");
}

TEST_F(PosixFileSystemTest, readsAndWritesNothingBeyondItsBound) {
    PosixFileSystem bounded(4);
    directory.write("fits", "1234");
    directory.write("exceeds", "12345");
    EXPECT_EQ(bounded.read(at("fits")), "1234");
    EXPECT_EQ(code(bounded.read(at("exceeds"))), EFBIG);
    // The kernel says 0 bytes for these, so that only the reading itself can find out.
    EXPECT_EQ(code(bounded.read("/proc/self/status")), EFBIG);
    EXPECT_EQ(code(bounded.writeFlushed(at("new"), "12345")), EFBIG);
    EXPECT_FALSE(fs::exists(at("new")));
    EXPECT_TRUE(bounded.writeFlushed(at("new"), "1234"));
}

TEST_F(PosixFileSystemTest, aStampTellsOneContentFromAnother) {
    const auto file = directory.write("file", "1234");
    const auto fresh = files.stamp(file);
    ASSERT_TRUE(fresh);
    EXPECT_FALSE(fresh->isSettled) << "the next change may come in the same tick of the clock";
    const auto longAgo = fs::last_write_time(file) - std::chrono::seconds{10};
    fs::last_write_time(file, longAgo);
    const auto settled = files.stamp(file);
    EXPECT_TRUE(settled->isSettled);
    EXPECT_EQ(files.stamp(file), settled);

    directory.write("other", "4321");
    fs::last_write_time(at("other"), longAgo);
    fs::rename(at("other"), file);
    EXPECT_NE(files.stamp(file), settled) << "replaced by one of the same size and date";
    EXPECT_FALSE(files.stamp(at("missing")));
}

TEST_F(PosixFileSystemTest, aLockIsWaitedForButNotForLong) {
    PosixFileSystem other(PosixFileSystem::defaultMaximumSize, std::chrono::milliseconds{20});
    {
        const auto held = files.lock(at("lock"));
        ASSERT_TRUE(held);
        EXPECT_EQ(code(other.lock(at("lock"))), EBUSY);
    }
    EXPECT_TRUE(other.lock(at("lock")));
    EXPECT_EQ(code(other.lock(at("missing/lock"))), ENOENT);
}

/// Adds names to the settings in a process of its own.
pid_t startWriter(const fs::path& data, const std::string& name, int count) {
    const pid_t process = ::fork();
    if (process != 0)
        return process;
    PosixFileSystem patient(PosixFileSystem::defaultMaximumSize, std::chrono::minutes{1});
    SystemWallClock clock;
    SettingsStore store(AppSupportPaths{patient, data}, clock);
    bool isSaved = true;
    for (int i = 0; i < count; ++i)
        isSaved = isSaved && store.change([&](AppSettings& settings) {
            settings.excludedBundleIDs.push_back(name + std::to_string(i));
        });
    ::_exit(isSaved ? 0 : 1);
}

TEST_F(PosixFileSystemTest, twoProgramsThatChangeOneFileLoseNothing) {
    constexpr int count = 60;
    const std::array writers{startWriter(at("data"), "a", count), startWriter(at("data"), "b", count)};
    SystemWallClock clock;
    SettingsStore store(AppSupportPaths{files, at("data")}, clock);
    for (const pid_t writer : writers) {
        int status = 0;
        while (::waitpid(writer, &status, WNOHANG) == 0)
            ASSERT_TRUE(store.load()) << "half a file";
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(store.load()->excludedBundleIDs.size(), std::size_t{2 * count});
    EXPECT_EQ(std::distance(fs::directory_iterator(at("data")), fs::directory_iterator()), 2)
        << "the settings and the lock";
}

TEST_F(PosixFileSystemTest, linksLeadToTheirEndEvenWhereNothingIsYet) {
    directory.write("folder/file", "");
    fs::create_symlink("folder/file", at("relative"));
    fs::create_symlink(at("relative"), at("chain"));
    fs::create_symlink("../later", at("folder/dangling"));
    fs::create_symlink("there", at("back"));
    fs::create_symlink("back", at("there"));

    for (const auto& [name, end] : {std::pair{"folder/file", "folder/file"},
                                    {"missing", "missing"},
                                    {"relative", "folder/file"},
                                    {"chain", "folder/file"},
                                    {"folder/dangling", "folder/../later"}})
        EXPECT_EQ(files.resolveLink(at(name)), at(end)) << name;
    EXPECT_EQ(code(files.resolveLink(at("back"))), ELOOP);
}

TEST_F(PosixFileSystemTest, somethingInTheWayIsAnErrorAndChangesNothing) {
    directory.write("file", "old");
    directory.write("folder/kept", "");
    fs::create_symlink("file", at("link"));

    EXPECT_EQ(code(files.createDirectories(at("file/below"))), ENOTDIR);
    EXPECT_EQ(code(files.createDirectories(at("new/" + std::string(300, 'n')))), ENAMETOOLONG);
    EXPECT_FALSE(fs::exists(at("new")));
    EXPECT_EQ(code(files.writeFlushed(at("folder"), "x")), EISDIR);
    EXPECT_EQ(code(files.writeFlushed(at("missing/file"), "x")), ENOENT);
    EXPECT_EQ(code(files.rename(at("file"), at("folder"))), EISDIR);
    EXPECT_EQ(code(files.rename(at("missing"), at("file"))), ENOENT);
    EXPECT_EQ(code(files.flushDirectory(at("file"))), ENOTDIR);
    EXPECT_EQ(code(files.remove(at("missing"))), ENOENT);
    EXPECT_EQ(code(files.remove(at("folder"))), EISDIR);
    EXPECT_EQ(directory.read("file"), "old");
    EXPECT_TRUE(fs::exists(at("folder/kept")));

    EXPECT_TRUE(files.remove(at("link")));
    EXPECT_TRUE(fs::exists(at("file")));
    EXPECT_TRUE(files.rename(at("file"), at("folder/kept")));
    EXPECT_EQ(directory.read("folder/kept"), "old");
}

TEST_F(PosixFileSystemTest, aWriteThatDoesNotFitLeavesNothingBehind) {
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    const auto oldHandler = ::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{1000, old.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const auto result = files.writeFlushed(at("file"), std::string(5000, 'x'));
    ::setrlimit(RLIMIT_FSIZE, &old);
    ::signal(SIGXFSZ, oldHandler);

    ASSERT_FALSE(result);
    EXPECT_EQ(result.error(), (FileError{"write", at("file").string(), EFBIG}));
    EXPECT_FALSE(fs::exists(at("file")));
}

} // namespace
} // namespace tavrin

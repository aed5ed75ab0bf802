#include "platform/posix/posix_file_system.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tavrin {
namespace {

namespace fs = std::filesystem;

/// Owns an open file; closes it when destroyed.
class FileDescriptor {
public:
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&&) = delete;
    ~FileDescriptor() { close(); }

    bool isOpen() const { return number_ >= 0; }
    int number() const { return number_; }

    /// Closes now. The system's error number, 0 when all went well.
    int close() {
        const int number = std::exchange(number_, -1);
        if (number < 0 || ::close(number) == 0)
            return 0;
        // After EINTR the descriptor is closed all the same; closing it again could hit somebody else's file.
        return errno == EINTR ? 0 : errno;
    }

private:
    int number_;
};

std::unexpected<FileError> failure(std::string operation, const fs::path& path, int code) {
    return std::unexpected(FileError{std::move(operation), path.string(), code});
}

/// The system would silently cut such a path at the zero and reach another file.
bool holdsZero(const fs::path& path) {
    return path.native().find('\0') != std::string::npos;
}

template <class Call>
auto retrying(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

int openFile(const fs::path& path, int flags, mode_t mode = 0) {
    if (holdsZero(path)) {
        errno = EINVAL;
        return -1;
    }
    return retrying([&] { return ::open(path.c_str(), flags | O_CLOEXEC, mode); });
}

std::expected<void, int> writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = retrying([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
        if (written < 0)
            return std::unexpected(errno);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

/// A new file at `path`; whatever stood there is removed.
int createReplacing(const fs::path& path) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW;
    constexpr int attempts = 3;
    int descriptor = -1;
    for (int i = 0; i < attempts; ++i) {
        descriptor = openFile(path, flags, S_IRUSR | S_IWUSR);
        if (descriptor >= 0 || errno != EEXIST)
            return descriptor;
        if (::unlink(path.c_str()) != 0 && errno != ENOENT)
            return -1;
    }
    return descriptor;
}

} // namespace

bool PosixFileSystem::exists(const fs::path& path) {
    struct stat status{};
    if (holdsZero(path))
        return false;
    return ::stat(path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

std::optional<FileStamp> PosixFileSystem::stamp(const fs::path& path) {
    using namespace std::chrono;
    // Clocks of file systems tick in steps of up to two seconds.
    constexpr seconds coarsestStep{2};
    struct stat status{};
    if (holdsZero(path) || ::stat(path.c_str(), &status) != 0)
        return std::nullopt;
    const auto modified = seconds{status.st_mtim.tv_sec} + nanoseconds{status.st_mtim.tv_nsec};
    return FileStamp{.device = status.st_dev,
                     .inode = status.st_ino,
                     .size = status.st_size,
                     .modified = modified.count(),
                     .isSettled = modified + coarsestStep < system_clock::now().time_since_epoch()};
}

std::expected<std::string, FileError> PosixFileSystem::read(const fs::path& path) {
    // Without O_NONBLOCK opening a FIFO would wait for a writer.
    const FileDescriptor file(openFile(path, O_RDONLY | O_NONBLOCK | O_NOCTTY));
    if (!file.isOpen())
        return failure("open", path, errno);
    struct stat status{};
    if (::fstat(file.number(), &status) != 0)
        return failure("stat", path, errno);
    if (S_ISDIR(status.st_mode))
        return failure("read", path, EISDIR);
    if (!S_ISREG(status.st_mode))
        return failure("read a file that is not regular", path, EINVAL);
    if (status.st_size > 0 && static_cast<std::uintmax_t>(status.st_size) > maximumSize_)
        return failure("read", path, EFBIG);

    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)));
    std::array<char, std::size_t{64} * 1024> buffer;
    for (;;) {
        const ssize_t count = retrying([&] { return ::read(file.number(), buffer.data(), buffer.size()); });
        if (count < 0)
            return failure("read", path, errno);
        if (count == 0)
            return bytes;
        // The file may have grown since its size was asked.
        if (bytes.size() + static_cast<std::size_t>(count) > maximumSize_)
            return failure("read", path, EFBIG);
        bytes.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

std::expected<void, FileError> PosixFileSystem::createDirectories(const fs::path& path) {
    if (holdsZero(path))
        return failure("create directory", path, EINVAL);
    std::vector<fs::path> created;
    fs::path current;
    for (const auto& part : path) {
        current /= part;
        if (::mkdir(current.c_str(), S_IRWXU) == 0) {
            created.push_back(current);
            continue;
        }
        int code = errno;
        struct stat status{};
        if (::stat(current.c_str(), &status) == 0) {
            if (S_ISDIR(status.st_mode))
                continue;
            code = ENOTDIR;
        }
        for (auto directory = created.rbegin(); directory != created.rend(); ++directory)
            ::rmdir(directory->c_str());
        return failure("create directory", current, code);
    }
    for (const auto& directory : created)
        (void)flushDirectory(directory.parent_path()); // best effort: the directory is there already
    return {};
}

std::expected<fs::path, FileError> PosixFileSystem::resolveLink(const fs::path& path) {
    if (holdsZero(path))
        return failure("resolve", path, EINVAL);
    constexpr int maximumLinks = 40; // what Linux allows
    fs::path current = path;
    for (int i = 0; i <= maximumLinks; ++i) {
        if (!current.has_filename()) // "folder/" would be asked for the folder, not for the link to it
            current = current.parent_path();
        std::array<char, 4096 + 1> target;
        const ssize_t length = ::readlink(current.c_str(), target.data(), target.size());
        if (length < 0) {
            if (errno == EINVAL || errno == ENOENT) // no link, or nothing there (yet)
                return current;
            return failure("resolve", current, errno);
        }
        if (static_cast<std::size_t>(length) == target.size())
            return failure("resolve", current, ENAMETOOLONG);
        current =
            current.parent_path() / fs::path(std::string(target.data(), static_cast<std::size_t>(length)));
    }
    return failure("resolve", path, ELOOP);
}

std::expected<Token, FileError> PosixFileSystem::lock(const fs::path& path) {
    using Clock = std::chrono::steady_clock;
    constexpr int pause = 5; // milliseconds
    FileDescriptor file(openFile(path, O_RDWR | O_CREAT | O_NOFOLLOW, S_IRUSR | S_IWUSR));
    if (!file.isOpen())
        return failure("lock", path, errno);
    const auto end = Clock::now() + lockPatience_;
    while (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == ENOLCK || errno == ENOTSUP || errno == ENOSYS)
            return Token{};
        if (errno != EWOULDBLOCK && errno != EINTR)
            return failure("lock", path, errno);
        if (Clock::now() >= end)
            return failure("lock", path, EBUSY);
        ::poll(nullptr, 0, pause); // nothing tells when a lock becomes free
    }
    return Token([held = std::move(file)]() mutable { held.close(); });
}

std::vector<std::string> PosixFileSystem::names(const fs::path& directory) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error))
        names.push_back(entry->path().filename().string());
    return names;
}

std::expected<void, FileError> PosixFileSystem::writeFlushed(const fs::path& path, std::string_view bytes) {
    if (bytes.size() > maximumSize_)
        return failure("write", path, EFBIG);
    FileDescriptor file(createReplacing(path));
    if (!file.isOpen())
        return failure("create", path, errno);
    const auto abandon = [&](std::string operation, int code) {
        ::unlink(path.c_str());
        return failure(std::move(operation), path, code);
    };
    if (const auto written = writeAll(file.number(), bytes); !written)
        return abandon("write", written.error());
    if (retrying([&] { return ::fsync(file.number()); }) != 0)
        return abandon("flush", errno);
    if (const int code = file.close(); code != 0)
        return abandon("close", code);
    return {};
}

std::expected<void, FileError> PosixFileSystem::rename(const fs::path& from, const fs::path& to) {
    if (holdsZero(from) || holdsZero(to))
        return failure("rename", to, EINVAL);
    if (::rename(from.c_str(), to.c_str()) != 0)
        return failure("rename", errno == ENOENT ? from : to, errno);
    return {};
}

std::expected<void, FileError> PosixFileSystem::flushDirectory(const fs::path& path) {
    const FileDescriptor directory(openFile(path, O_RDONLY | O_DIRECTORY));
    if (!directory.isOpen())
        return failure("open", path, errno);
    if (retrying([&] { return ::fsync(directory.number()); }) == 0)
        return {};
    if (errno == EINVAL || errno == ENOTSUP || errno == ENOSYS)
        return {};
    return failure("flush", path, errno);
}

std::expected<void, FileError> PosixFileSystem::remove(const fs::path& path) {
    if (holdsZero(path))
        return failure("remove", path, EINVAL);
    if (::unlink(path.c_str()) != 0)
        return failure("remove", path, errno);
    return {};
}

} // namespace tavrin

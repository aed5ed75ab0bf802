#include "platform/freedesktop/small_file.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrin {

std::optional<std::string> readSmallFile(const std::filesystem::path& path, std::size_t maximumBytes) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0)
        return std::nullopt;
    struct stat status{};
    std::optional<std::string> bytes;
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
        bytes.emplace();
        std::array<char, 16384> buffer;
        for (;;) {
            const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
            if (count < 0 && errno == EINTR)
                continue;
            if (count == 0)
                break;
            if (count < 0 || bytes->size() + static_cast<std::size_t>(count) > maximumBytes) {
                bytes.reset();
                break;
            }
            bytes->append(buffer.data(), static_cast<std::size_t>(count));
        }
    }
    ::close(descriptor);
    return bytes;
}

} // namespace tavrin

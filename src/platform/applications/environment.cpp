#include "platform/applications/environment.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrin {
namespace {

namespace fs = std::filesystem;

bool isProgram(const fs::path& path) {
    struct stat status{};
    return path.is_absolute() && ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
}

} // namespace

std::optional<std::string> environmentVariable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr || *value == '\0' ? std::nullopt : std::optional<std::string>(value);
}

std::vector<std::string> splitList(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const auto end = std::min(text.find(separator), text.size());
        if (end > 0)
            parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

std::vector<std::string> messageLocales() {
    std::string locale;
    for (const auto* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const auto value = environmentVariable(name)) {
            locale = *value;
            break;
        }
    std::string modifier;
    if (const auto at = locale.find('@'); at != std::string::npos) {
        modifier = locale.substr(at);
        locale.erase(at);
    }
    if (const auto dot = locale.find('.'); dot != std::string::npos)
        locale.erase(dot);
    if (locale.empty() || locale == "C" || locale == "POSIX")
        return {};

    const std::string language = locale.substr(0, locale.find('_'));
    std::vector<std::string> locales;
    for (const auto& base : {locale, language}) {
        if (base.empty() || (!locales.empty() && locales.back() == base))
            continue;
        if (!modifier.empty())
            locales.push_back(base + modifier);
        locales.push_back(base);
    }
    return locales;
}

std::optional<fs::path> findProgram(const std::string& program) {
    if (program.find('/') != std::string::npos)
        return isProgram(program) ? std::optional<fs::path>(program) : std::nullopt;
    const auto folders = environmentVariable("PATH").value_or("/usr/local/bin:/usr/bin:/bin");
    for (const auto& folder : splitList(folders, ':'))
        if (auto path = fs::path(folder) / program; isProgram(path))
            return path;
    return std::nullopt;
}

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

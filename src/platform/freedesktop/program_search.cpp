#include "platform/freedesktop/program_search.h"

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

std::optional<fs::path> findProgram(const std::string& program, const Environment& environment) {
    if (program.find('/') != std::string::npos)
        return isProgram(program) ? std::optional<fs::path>(program) : std::nullopt;
    const auto folders = nonEmpty(environment, "PATH").value_or("/usr/local/bin:/usr/bin:/bin");
    for (const auto& folder : splitList(folders, ':'))
        if (auto path = fs::path(folder) / program; isProgram(path))
            return path;
    return std::nullopt;
}

} // namespace tavrin

#include "platform/freedesktop/xdg_paths.h"

#include <pwd.h>
#include <unistd.h>
#include <utility>

namespace tavrin {
namespace {

namespace fs = std::filesystem;

fs::path homeInUserDatabase() {
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr &&
        found->pw_dir != nullptr && found->pw_dir[0] == '/')
        return found->pw_dir;
    return "/";
}

} // namespace

XdgPaths::XdgPaths(Environment environment) : environment_(std::move(environment)) {}

fs::path XdgPaths::directory(const std::string& variable, const fs::path& fallback) const {
    const auto value = environment_(variable);
    return value && value->starts_with('/') ? fs::path(*value) : fallback;
}

std::vector<fs::path> XdgPaths::directories(const std::string& variable,
                                            std::vector<fs::path> fallback) const {
    std::vector<fs::path> found;
    for (auto& part : splitList(environment_(variable).value_or(""), ':'))
        if (part.starts_with('/'))
            found.emplace_back(std::move(part));
    return found.empty() ? fallback : found;
}

fs::path XdgPaths::home() const {
    const auto value = environment_("HOME");
    return value && value->starts_with('/') ? fs::path(*value) : homeInUserDatabase();
}

fs::path XdgPaths::dataHome() const {
    return directory("XDG_DATA_HOME", home() / ".local/share");
}

fs::path XdgPaths::configHome() const {
    return directory("XDG_CONFIG_HOME", home() / ".config");
}

std::vector<fs::path> XdgPaths::dataDirectories() const {
    return directories("XDG_DATA_DIRS", {"/usr/local/share", "/usr/share"});
}

std::vector<fs::path> XdgPaths::configDirectories() const {
    return directories("XDG_CONFIG_DIRS", {"/etc/xdg"});
}

std::vector<fs::path> XdgPaths::applicationDirectories() const {
    std::vector<fs::path> found{dataHome() / "applications"};
    for (const auto& directory : dataDirectories())
        found.push_back(directory / "applications");
    return found;
}

} // namespace tavrin

#pragma once

#include "platform/freedesktop/environment.h"

#include <filesystem>
#include <vector>

namespace tavrin {

/// The base directories of the user and the system. Variables that hold no absolute path are ignored, as
/// the XDG Base Directory Specification demands. None of the directories need exist.
class XdgPaths {
public:
    explicit XdgPaths(Environment environment = processEnvironment);

    /// $HOME, else what the user database says, else the root directory.
    std::filesystem::path home() const;

    /// $XDG_DATA_HOME, else ~/.local/share.
    std::filesystem::path dataHome() const;

    /// $XDG_CONFIG_HOME, else ~/.config.
    std::filesystem::path configHome() const;

    /// $XDG_DATA_DIRS, else /usr/local/share and /usr/share; best first, without the user's own.
    std::vector<std::filesystem::path> dataDirectories() const;

    /// $XDG_CONFIG_DIRS, else /etc/xdg; best first, without the user's own.
    std::vector<std::filesystem::path> configDirectories() const;

    /// Where this program keeps its data files: the folder Tavrin in the data home.
    std::filesystem::path applicationData() const { return dataHome() / "Tavrin"; }

    /// The folder Tavrin in the config home.
    std::filesystem::path applicationConfig() const { return configHome() / "Tavrin"; }

    /// The folders of installed applications' desktop entries, best first.
    std::vector<std::filesystem::path> applicationDirectories() const;

private:
    std::filesystem::path directory(const std::string& variable, const std::filesystem::path& fallback) const;
    std::vector<std::filesystem::path> directories(const std::string& variable,
                                                   std::vector<std::filesystem::path> fallback) const;

    Environment environment_;
};

} // namespace tavrin

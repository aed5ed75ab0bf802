#pragma once

#include "ports/file_system.h"

#include <array>
#include <filesystem>

namespace tavrin {

/// The directory with the program's data and the files in it.
struct AppSupportPaths {
    FileSystem& fileManager;
    std::filesystem::path rootURL;

    std::filesystem::path profilesFile() const { return rootURL / "profiles.json"; }
    std::filesystem::path layoutsFile() const { return rootURL / "layouts.json"; }
    std::filesystem::path settingsFile() const { return rootURL / "settings.json"; }
};

} // namespace tavrin

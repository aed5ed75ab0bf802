#pragma once

#include <filesystem>

namespace tavrin {

/// Opens things outside the program.
class LinkOpener {
public:
    virtual ~LinkOpener() = default;

    /// Where the user grants the permission to move windows, or the page that says what this desktop needs.
    /// False when nothing could be opened.
    virtual bool openAccessibilitySettings() = 0;

    /// Shows a folder in the file manager. False when nothing could be opened.
    virtual bool openFolder(const std::filesystem::path& folder) = 0;
};

} // namespace tavrin

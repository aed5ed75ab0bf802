#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavrin {

/// What this program needs of a desktop entry. Texts are unescaped, valid UTF-8 and of bounded length;
/// those that are missing are empty.
struct DesktopEntry {
    std::string id; ///< the desktop file ID, for example org.gnome.Nautilus.desktop; not part of the file
    std::string name;
    std::string icon;
    std::string exec; ///< still quoted and with field codes; see `execWords`
    std::string tryExec;
    std::string startupWMClass;
    std::string flatpak; ///< the application a Flatpak installed the entry for
    std::string snap;    ///< likewise
    std::vector<std::string> categories;
    std::vector<std::string> onlyShowIn;
    std::vector<std::string> notShowIn;
    bool isApplication = false; ///< not a link or a directory
    bool isHidden = false;      ///< as if it were not installed
    bool isNoDisplay = false;   ///< installed but not shown in menus
    bool runsInTerminal = false;
    bool isAutostartEnabled = true;

    bool operator==(const DesktopEntry&) const = default;
};

/// Larger entries are refused.
constexpr std::size_t maximumDesktopEntrySize = std::size_t{1} << 20;

/// Reads the group [Desktop Entry]; texts in the first of `locales` (see `messageLocales`) that the entry
/// has, else untranslated. Broken lines and unknown keys are skipped, of a repeated key the last one
/// counts. Absent when there is no such group or `bytes` is too large.
std::optional<DesktopEntry> parseDesktopEntry(std::string_view bytes,
                                              const std::vector<std::string>& locales = {});

/// A key of an entry with its value as it stands in the file; absent to leave the key out.
using DesktopEntryKey = std::pair<std::string, std::optional<std::string>>;

/// `bytes` with the given keys in its group [Desktop Entry] in place of those of the same name; all other
/// lines stay as they are. Makes the group where it is missing.
std::string withDesktopEntryKeys(std::string_view bytes, const std::vector<DesktopEntryKey>& keys);

/// `text` as it stands in a file as the value of a key.
std::string escapedDesktopEntryText(std::string_view text);

} // namespace tavrin

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The libraries that read desktop entries belong to one desktop each (GIO, KService), do not bound what they
// read, and cannot write an entry back with its other lines as they were.

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
    bool opensPages = false; ///< files with HTML

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

/// The words of an Exec key's value, its quoting undone and its field codes (%U and the like) left out;
/// absent for a broken value.
std::optional<std::vector<std::string>> execWords(std::string_view exec);

/// The name of the program that a command starts, without its folder: the first word, or what `env` starts
/// when that is the first word. Empty when there is none.
std::string programOfCommand(const std::vector<std::string>& words);

/// Programs that run other programs; their name says nothing about the application.
bool isInterpreter(std::string_view program);

/// `word` as it stands in the value of an Exec key: quoted where needed, no part of it taken for a field
/// code, and with the escapes of the file itself.
std::string quotedExecWord(std::string_view word);

} // namespace tavrin

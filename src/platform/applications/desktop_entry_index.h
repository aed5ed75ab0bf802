#pragma once

#include "base/timestamp.h"
#include "platform/applications/desktop_entry.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// A desktop entry with what is compared when its application is looked for, worked out once.
struct InstalledApplication {
    DesktopEntry entry;
    std::string foldedID;
    std::string foldedStem;         ///< of the ID, without ".desktop"
    std::string foldedLastPart;     ///< "nautilus" of "org.gnome.Nautilus.desktop"; empty for a plain name
    std::string foldedStartupClass; ///< of StartupWMClass
    std::string program;            ///< what Exec starts; empty when that is an interpreter
    std::string foldedProgram;
    bool hasArguments = false; ///< Exec gives the program arguments other than files to open
    bool isFlatpak = false;

    explicit InstalledApplication(DesktopEntry entry);

    bool operator==(const InstalledApplication& other) const { return entry == other.entry; }
};

/// The form in which names of programs, entries and window classes are compared where case does not count.
std::string foldedApplicationName(std::string_view name);

/// The desktop entries of the installed applications, kept up to date with the directories they are in.
class DesktopEntryIndex {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    /// `directories` as $XDG_DATA_DIRS orders them, best first; a missing one may appear later. They are
    /// checked for changes when the index is used, but not more often than every `checkInterval`.
    DesktopEntryIndex(std::vector<std::filesystem::path> directories, std::vector<std::string> locales,
                      Seconds checkInterval = Seconds(1), Clock clock = std::chrono::steady_clock::now);

    /// Reads the directories again when they have changed. True when the interval was over, so that it was
    /// time to look.
    bool refresh();

    /// All applications that are not hidden, by ID. An entry is hidden by one of the same ID in a better
    /// directory. Valid until the next `refresh`.
    const std::vector<InstalledApplication>& applications() const { return applications_; }

    /// The entry of that ID; one that differs only in case where there is no such entry.
    const InstalledApplication* find(std::string_view id) const;

    /// Grows with every change of the applications.
    std::uint64_t generation() const { return generation_; }

private:
    /// How a directory looked when it was read.
    struct Stamp {
        std::filesystem::path path;
        std::uint64_t device = 0;
        std::uint64_t inode = 0; ///< 0 for a directory that was not there
        std::int64_t modified = 0;
        bool operator==(const Stamp&) const = default;
    };

    static Stamp stampOf(const std::filesystem::path& directory);
    void read();

    std::vector<std::filesystem::path> directories_;
    std::vector<std::string> locales_;
    Seconds checkInterval_;
    Clock clock_;
    std::optional<std::chrono::steady_clock::time_point> checked_;
    std::vector<Stamp> stamps_;
    std::vector<InstalledApplication> applications_;
    std::uint64_t generation_ = 0;
};

} // namespace tavrin

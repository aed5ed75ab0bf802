#pragma once

#include "platform/freedesktop/desktop_entry.h"

#include <string>
#include <string_view>

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

} // namespace tavrin

#pragma once

#include "platform/freedesktop/desktop_entry_index.h"
#include "platform/freedesktop/environment.h"
#include "ports/application_catalog.h"

#include <filesystem>
#include <map>

namespace tavrin {

/// The applications that have a desktop entry. The bundle identifier is the desktop file ID, for example
/// org.gnome.Nautilus.desktop; see `matchApplication` for how it is found. Without an entry it is the
/// window class as instance.class, for example xterm.XTerm, and the name is the class.
class FreedesktopApplicationCatalog final : public ApplicationCatalog {
public:
    /// What the environment says about directories and language is read once, here.
    explicit FreedesktopApplicationCatalog(const Environment& environment = processEnvironment);

    /// `procRoot` is where the kernel's process files are.
    FreedesktopApplicationCatalog(DesktopEntryIndex index, std::filesystem::path procRoot);

    ApplicationIdentity identify(const ApplicationClues& clues) override;
    std::optional<std::string> iconName(const std::string& bundleIdentifier) override;

private:
    /// A number alone may come to name another process.
    struct Question {
        ApplicationClues clues;
        std::uint64_t processStartTime = 0;
        auto operator<=>(const Question&) const = default;
    };

    void refresh();
    ApplicationIdentity find(const ApplicationClues& clues) const;

    DesktopEntryIndex index_;
    std::filesystem::path procRoot_;
    std::map<Question, ApplicationIdentity> answers_;
    std::uint64_t answersGeneration_ = 0;
};

} // namespace tavrin

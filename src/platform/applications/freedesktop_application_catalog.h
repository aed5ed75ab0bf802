#pragma once

#include "platform/applications/desktop_entry_index.h"
#include "platform/applications/process_facts.h"
#include "ports/application_catalog.h"

#include <cstdint>
#include <filesystem>
#include <limits>
#include <map>

namespace tavrin {

/// The applications that have a desktop entry. The bundle identifier is the desktop file ID, for example
/// org.gnome.Nautilus.desktop; see `matchApplication` for how it is found. Without an entry it is the
/// window class as instance.class, for example xterm.XTerm, and the name is the class. Answers are kept as
/// long as the process and the installed applications stay; both are checked at most once per second.
class FreedesktopApplicationCatalog final : public ApplicationCatalog {
public:
    /// What the environment says about directories and language is read once, here.
    FreedesktopApplicationCatalog();

    /// `procRoot` is where the kernel's process files are.
    FreedesktopApplicationCatalog(DesktopEntryIndex index, std::filesystem::path procRoot);
    FreedesktopApplicationCatalog(DesktopEntryIndex index, std::filesystem::path procRoot,
                                  ProcessFactsReader::Read readFacts);

    ApplicationIdentity identify(const ApplicationClues& clues) override;
    ApplicationIdentity installedApplication(const std::string& bundleIdentifier) override;

    /// Some installed application shows web pages.
    bool canOpenPages();

private:
    static constexpr auto unknown = std::numeric_limits<std::uint64_t>::max();
    struct Answer {
        ApplicationIdentity identity;
        std::uint64_t processStartTime =
            0; ///< tells whether the number still means the same process; `unknown` to ask again
        std::uint64_t round = 0; ///< when that was looked up last
    };

    void refresh();
    ApplicationIdentity find(const ApplicationClues& clues, const ProcessFacts& facts) const;

    DesktopEntryIndex index_;
    std::filesystem::path procRoot_;
    ProcessFactsReader factsReader_;
    std::map<ApplicationClues, Answer> answers_;
    std::uint64_t round_ = 0; ///< grows as often as the index looks for changes
    std::uint64_t answersGeneration_ = 0;
};

} // namespace tavrin

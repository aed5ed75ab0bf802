#pragma once

#include "ui/user_interface.h"

#include <string>
#include <vector>

namespace tavrin {

/// Something that keeps the program from doing its work.
struct Trouble {
    enum class Kind { permission, dataFile };
    Kind kind = Kind::permission;
    std::string title;
    std::string message; ///< what is wrong here and what to do about it
    std::string request; ///< on the button that has the desktop mend it; empty where it cannot

    bool operator==(const Trouble&) const = default;
};

/// The missing permission and the data files that cannot be read, as every pane shows them before anything
/// else, with what can be done about them.
class Troubles {
public:
    /// The collaborators outlive this.
    explicit Troubles(const SettingsCollaborators& collaborators);

    const std::vector<Trouble>& list() const { return list_; }

    /// Checks again.
    void refresh();

    /// Opens the page that says what this desktop needs; false when nothing could be opened.
    bool showHowToFix() { return collaborators_.linkOpener.openAccessibilitySettings(); }
    /// Asks the desktop for the permission.
    void requestPermission() { collaborators_.permissionStatusViewModel.requestAccess(); }
    void recheckPermission() { collaborators_.permissionStatusViewModel.recheckAndPoll(); }
    /// Renames the files that cannot be read, so that the program starts without their content.
    void setFilesAside();

    Signal<> changed;

private:
    const SettingsCollaborators& collaborators_;
    std::vector<Trouble> list_;
    std::vector<Token> subscriptions_;
};

} // namespace tavrin

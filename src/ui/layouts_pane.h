#pragma once

#include "ui/layout_picture.h"
#include "ui/user_interface.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// How the last restore of a layout went.
struct RestoreReport {
    std::string text; ///< empty before any
    bool isWarning = false;
    bool hasDetails = false; ///< the advanced pane tells more

    bool operator==(const RestoreReport&) const = default;
};

/// What the layouts pane shows of one layout.
struct LayoutCard {
    Uuid id;
    std::string name;
    std::size_t windowCount = 0;
    Timestamp updatedAt;
    std::optional<std::string> age; ///< see `relativeTimeText`
    bool isDefault = false;
    bool canRestore = false;
    bool canUpdate = false; ///< its displays are connected, so the open windows belong to it
    std::optional<KeyCombo> shortcut;
    LayoutPicture picture;
    RestoreReport report;

    bool operator==(const LayoutCard&) const = default;
};

/// What the layouts pane shows of one saved display setup.
struct SetupCard {
    Uuid id;
    std::string name;
    bool isCurrent = false;
    bool isCandidate = false; ///< may be the connected one; the user can say so
    bool isExpanded = true;
    std::string detail;          ///< displays and learned associations in words
    std::size_t layoutCount = 0; ///< with those that are folded away or filtered out
    std::vector<LayoutCard> layouts;

    bool operator==(const SetupCard&) const = default;
};

struct LayoutsPaneContent {
    /// Why the connected setup is not known for sure; empty when it is.
    std::string suggestionTitle, suggestionMessage;
    std::string currentSetupText;  ///< which setup is connected, or why none is recognised
    std::vector<SetupCard> setups; ///< the connected or suggested one first
    bool canSave = true;
    bool isUnreadable = false; ///< a file cannot be read, so nothing is known of what was saved
    bool offersFilter = false; ///< there are many layouts
    bool isFoldable = false;   ///< setups can be folded

    bool operator==(const LayoutsPaneContent&) const = default;

    bool isEmpty() const { return setups.empty() && !isUnreadable && !offersFilter; }
};

/// A question before something is lost.
struct DeletionQuestion {
    std::string title;
    std::string message; ///< what is lost
    std::string confirmLabel;

    bool operator==(const DeletionQuestion&) const = default;
};

/// How long ago that was in words, for example "5 minutes ago"; absent from a day on (and for the future),
/// where a date says more.
std::optional<std::string> relativeTimeText(Timestamp then, Timestamp now);

/// The saved display setups with their layouts. What cannot be saved, renamed or deleted stays as it is,
/// and the pane shows what the files hold.
class LayoutsPane {
public:
    static constexpr std::string_view emptyText =
        "Arrange your windows the way you like them, then save them as a layout for the displays you are "
        "using now.";
    static constexpr std::string_view emptySetupText = "No layouts saved for this display setup yet.";
    static constexpr std::size_t manyLayouts = 12; ///< more than these get a filter and setups that fold
    static constexpr Seconds reportDuration{60};

    /// The collaborators outlive the pane.
    explicit LayoutsPane(const SettingsCollaborators& collaborators);

    /// The view is shown, or shown again: reads everything anew.
    void appear();

    const LayoutsPaneContent& content() const { return content_; }

    /// Shows only layouts with that text in their names; an empty text shows all.
    void setFilter(std::string_view filter);
    void setExpanded(const Uuid& profileID, bool isExpanded);

    /// Asks for a name beside that place on the desktop, in the toolkit's coordinates.
    void saveLayout(const Rect& beside);
    /// The user says which setup is the connected one.
    void confirmSetup(const Uuid& profileID);

    void restore(const Uuid& layoutID);
    /// Replaces the saved windows by those that are open now.
    void update(const Uuid& layoutID);
    /// Makes the layout the one that is restored automatically on its setup, or the setup without one.
    enum class DefaultLayout { set, cleared };
    void setDefault(const Uuid& layoutID, DefaultLayout wanted);

    /// Why the layout or the setup cannot have that name; absent when it can. Nothing changes when it keeps
    /// the name it has.
    std::optional<std::string> layoutNameRefusal(const Uuid& layoutID, std::string_view name) const;
    std::optional<std::string> setupNameRefusal(std::string_view name) const;
    void renameLayout(const Uuid& layoutID, std::string_view name);
    void renameSetup(const Uuid& profileID, std::string_view name);

    /// Absent for what no longer exists.
    std::optional<DeletionQuestion> layoutDeletionQuestion(const Uuid& layoutID);
    std::optional<DeletionQuestion> setupDeletionQuestion(const Uuid& profileID);
    void deleteLayout(const Uuid& layoutID);
    void deleteSetup(const Uuid& profileID);

    Signal<> changed;

private:
    /// What is stored; empty when it cannot be read.
    SavedSetups stored() const;
    LayoutsPaneContent read() const;
    SetupCard readSetup(const MonitorProfile& profile, const SavedSetups& setups, bool isFoldable) const;
    RestoreReport report(const RestoreResult& result, const Uuid& layoutID) const;
    void publish();
    /// Has the models, and with them this pane, read the result of an action.
    void reloadModels();
    void setReport(const Uuid& layoutID, RestoreReport report);
    void clearReport();
    /// The user's next action removes the report of the one before.
    void beginAction();
    void readAgainSoon();

    const SettingsCollaborators& collaborators_;
    LayoutsPaneContent content_;
    std::string filter_;               ///< folded
    std::map<Uuid, bool> foldChoices_; ///< setups that the user folded or unfolded
    std::optional<Uuid> reportLayoutID_;
    RestoreReport report_;
    Token reportExpiry_;
    Token nextReading_;
    std::vector<Token> subscriptions_;
};

} // namespace tavrin

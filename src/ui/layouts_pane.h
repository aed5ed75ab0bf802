#pragma once

#include "base/timestamp.h"
#include "records/key_combo.h"
#include "ui/layout_picture.h"
#include "ui/user_interface.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// What the layouts pane shows of one layout.
struct LayoutCard {
    Uuid id;
    std::string name;
    std::size_t windowCount = 0;
    Timestamp updatedAt;
    bool isDefault = false;
    bool canUpdate = false; ///< its displays are connected, so the windows of now belong to it
    std::optional<KeyCombo> shortcut;
    LayoutPicture picture;
    std::string status; ///< how the last action on it went; empty before any

    bool operator==(const LayoutCard&) const = default;
};

/// What the layouts pane shows of one saved display setup.
struct SetupCard {
    Uuid id;
    std::string name;
    bool isCurrent = false;
    std::string detail; ///< displays and learned associations in words
    std::vector<LayoutCard> layouts;

    bool operator==(const SetupCard&) const = default;
};

/// A display setup that is probably the connected one.
struct SetupSuggestion {
    std::string title;
    std::string message;
    bool canConfirm = false; ///< there is exactly one candidate

    bool operator==(const SetupSuggestion&) const = default;
};

struct LayoutsPaneContent {
    std::optional<SetupSuggestion> suggestion;
    std::string currentSetupText;  ///< which setup is connected, or why none is recognised
    std::vector<SetupCard> setups; ///< the connected or suggested one first

    bool operator==(const LayoutsPaneContent&) const = default;

    bool isEmpty() const { return setups.empty(); }
};

/// A question before something is lost.
struct DeletionQuestion {
    std::string title;
    std::string message; ///< what is lost
    std::string confirmLabel;

    bool operator==(const DeletionQuestion&) const = default;
};

/// The questions. A layout's `shortcut` and `isDefault` and a setup's layouts say what is lost besides.
DeletionQuestion layoutDeletionQuestion(const LayoutCard& layout, const SetupCard& setup);
DeletionQuestion setupDeletionQuestion(const SetupCard& setup, std::size_t associationCount);

/// "1 window", "5 windows".
std::string windowCountText(std::size_t count);

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

    /// The collaborators outlive the pane.
    explicit LayoutsPane(const SettingsCollaborators& collaborators);

    /// The view is shown, or shown again: reads everything anew.
    void appear();

    const LayoutsPaneContent& content() const { return content_; }
    Timestamp now() const { return collaborators_.clock.now(); }

    /// Asks for a name beside that place on the desktop, in the toolkit's coordinates.
    void saveLayout(const Rect& beside);
    void confirmSuggestion();

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

    /// Absent for what is gone meanwhile.
    std::optional<DeletionQuestion> layoutDeletionQuestion(const Uuid& layoutID) const;
    std::optional<DeletionQuestion> setupDeletionQuestion(const Uuid& profileID) const;
    /// Shortcuts go with their layouts, layouts with their setup.
    void deleteLayout(const Uuid& layoutID);
    void deleteSetup(const Uuid& profileID);

    Signal<> changed;

private:
    struct Found {
        const SetupCard& setup;
        const LayoutCard& layout;
    };
    std::optional<Found> find(const Uuid& layoutID) const;
    LayoutsPaneContent read() const;
    std::optional<SetupSuggestion> suggestion() const;
    void publish();
    /// Lets the models read again what an action left behind, and with them this pane.
    void reloadModels();
    void removeShortcutsOfMissingLayouts();

    const SettingsCollaborators& collaborators_;
    LayoutsPaneContent content_;
    std::optional<Uuid> statusLayoutID_;
    std::string status_;
    std::vector<Token> subscriptions_;
};

} // namespace tavrin

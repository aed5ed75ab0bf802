#pragma once

#include "shortcuts/shortcut_conflict_checker.h"
#include "ui/current_profile_view_model.h"
#include "ui/profile_list_view_model.h"
#include "ui/shortcut_recorder_view.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// All shortcuts with their recorders: the one that finds the layout by itself, then one per layout.
class ShortcutsPane {
public:
    static constexpr std::string_view autoDetectTitle = "Auto-detect";
    static constexpr std::string_view autoDetectExplanation =
        "Restores the default layout of the connected setup.";
    static constexpr std::string_view emptyText = "Every layout you save can have a shortcut of its own.";

    struct Collaborators {
        ShortcutManager& shortcutManager;
        KeyMonitors& keyMonitors;
        ProfileStore& profileStore;
        ProfileListViewModel& profileListViewModel;
        CurrentProfileViewModel& currentProfileViewModel;
    };

    /// One shortcut; without a layout it is the one that finds the layout by itself.
    struct Row {
        std::optional<Uuid> layoutID;
        std::string title;
        bool operator==(const Row&) const = default;
    };
    /// The layouts of one display setup.
    struct Group {
        std::string title;
        bool isCurrent = false;
        std::vector<Row> rows;
        bool operator==(const Group&) const = default;
    };

    explicit ShortcutsPane(Collaborators collaborators);

    /// Reads setups and layouts anew. Shortcuts of layouts that are gone are removed.
    void appear();

    /// The setup that is connected first, then in the order of the list; setups without layouts are left out.
    const std::vector<Group>& groups() const { return groups_; }

    /// The recorder of a row that is shown; it lives as long as its row.
    ShortcutRecorderView& recorder(const std::optional<Uuid>& layoutID);

    /// Rows came or went; each recorder tells of its own changes.
    Signal<> changed;

private:
    using Recorders = std::map<std::optional<Uuid>, std::unique_ptr<ShortcutRecorderView>>;

    void readGroups();
    void readCombos();
    std::optional<KeyCombo> combo(const std::optional<Uuid>& layoutID) const;
    /// Every shortcut in the order shown, without the one being edited.
    std::vector<ShortcutConflictChecker::Assignment>
    assignments(const std::optional<Uuid>& editedLayoutID) const;
    std::unique_ptr<ShortcutRecorderView> makeRecorder(const std::optional<Uuid>& layoutID);

    Collaborators collaborators_;
    std::vector<Group> groups_;
    Recorders recorders_;
    std::vector<Token> subscriptions_;
};

} // namespace tavrin

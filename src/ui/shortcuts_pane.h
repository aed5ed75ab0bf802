#pragma once

#include "base/signal.h"
#include "shortcuts/shortcut_conflict_checker.h"
#include "shortcuts/shortcut_manager.h"
#include "shortcuts/shortcut_recorder.h"
#include "ui/user_interface.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// A recorder that listens to the keys while it records. Meanwhile no shortcut fires, so that a press that
/// belongs to another shortcut is seen here and refused instead of acting.
class ShortcutRecorderView {
public:
    ShortcutRecorderView(ShortcutRecorder recorder, ShortcutManager& shortcutManager,
                         KeyMonitors& keyMonitors)
        : recorder_(std::move(recorder)), shortcutManager_(shortcutManager), keyMonitors_(keyMonitors) {}

    const ShortcutRecorder& recorder() const { return recorder_; }

    void startRecording();
    /// Escape was pressed or the focus went elsewhere.
    void cancelRecording();
    void clear();
    /// The shortcut was changed elsewhere.
    void setCombo(std::optional<KeyCombo> combo);

    Signal<> changed;

private:
    bool handle(const KeyEvent& event);
    void stopListening();

    ShortcutRecorder recorder_;
    ShortcutManager& shortcutManager_;
    KeyMonitors& keyMonitors_;
    Token pause_;
    Token monitor_;
};

/// The shortcut in the words printed on keyboards, for example "Ctrl+Alt+R".
std::string shortcutInWords(const KeyCombo& combo);

/// All shortcuts with their recorders: auto-detect first, then one per layout.
class ShortcutsPane {
public:
    static constexpr std::string_view autoDetectTitle = "Auto-detect";
    static constexpr std::string_view autoDetectExplanation =
        "Restores the default layout of the connected setup.";
    static constexpr std::string_view emptyText = "Every layout you save can have a shortcut of its own.";

    /// One shortcut; without a layout it is auto-detect.
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

    /// The collaborators outlive the pane.
    explicit ShortcutsPane(const SettingsCollaborators& collaborators);

    /// Reads setups and layouts anew. Shortcuts of layouts that are gone are removed.
    void appear();

    /// The setup that is connected first, then in the order of the list; setups without layouts are left out.
    const std::vector<Group>& groups() const { return groups_; }

    /// The recorder of a row that is shown; it lives as long as its row.
    ShortcutRecorderView& recorder(const std::optional<Uuid>& layoutID);

    /// What the user should know of a shortcut although it is accepted; empty for most.
    std::string note(const KeyCombo& combo) const;

    /// Rows were added or removed; each recorder reports its own changes.
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

    const SettingsCollaborators& collaborators_;
    std::vector<ReservedCombo> reserved_; ///< by this desktop; empty: the usual ones
    std::vector<Group> groups_;
    Recorders recorders_;
    std::vector<Token> subscriptions_;
};

} // namespace tavrin

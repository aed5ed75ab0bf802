#include "shortcuts/shortcut_conflict_checker.h"

#include <algorithm>
#include <array>

namespace tavrin {
namespace {

constexpr auto controlCommand = ModifierSet{ModifierSet::control.rawValue | ModifierSet::command.rawValue};
constexpr auto* controlArrow = "Control-arrow shortcuts are commonly reserved by Mission Control and Spaces.";

const std::vector<ReservedCombo> usualReservations = {
    ReservedCombo{{123, ModifierSet::control}, controlArrow},
    ReservedCombo{{124, ModifierSet::control}, controlArrow},
    ReservedCombo{{125, ModifierSet::control}, controlArrow},
    ReservedCombo{{126, ModifierSet::control}, controlArrow},
    ReservedCombo{{12, controlCommand}, "Control-Command-Q locks the screen."},
    ReservedCombo{{49, ModifierSet::control},
                  "Control-Space is commonly reserved by macOS for input source switching."},
    ReservedCombo{{49, controlCommand}, "Control-Command-Space opens the emoji and symbols picker."},
};

} // namespace

ShortcutConflictChecker::ShortcutConflictChecker(std::vector<ReservedCombo> reserved)
    : reserved_(reserved.empty() ? usualReservations : std::move(reserved)) {}

std::optional<std::string> ShortcutConflictChecker::reservedMessage(const KeyCombo& combo) const {
    const auto found = std::ranges::find(reserved_, combo, &ReservedCombo::combo);
    return found == reserved_.end() ? std::nullopt : std::optional<std::string>(found->message);
}

std::optional<std::string>
ShortcutConflictChecker::conflictMessage(const KeyCombo& combo,
                                         const std::vector<Assignment>& assignments) const {
    if (auto reserved = reservedMessage(combo))
        return reserved;
    const auto found = std::ranges::find(assignments, combo, &Assignment::combo);
    if (found == assignments.end())
        return std::nullopt;
    return "This shortcut is already used by " + found->label + ".";
}

bool isCommonlyUsed(const KeyCombo& combo) {
    // A, S, F, Z, X, C, V, Q, W, T, O, P, N.
    constexpr std::array<std::uint16_t, 13> keys{0, 1, 3, 6, 7, 8, 9, 12, 13, 17, 31, 35, 45};
    return combo.modifiers == ModifierSet::control && std::ranges::find(keys, combo.keyCode) != keys.end();
}

} // namespace tavrin

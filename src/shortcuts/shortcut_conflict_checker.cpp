#include "shortcuts/shortcut_conflict_checker.h"

#include <algorithm>
#include <array>

namespace tavrin {
namespace {

struct Reservation {
    KeyCombo combo;
    const char* message;
};

constexpr auto controlCommand = ModifierSet{ModifierSet::control.rawValue | ModifierSet::command.rawValue};
constexpr auto* controlArrow = "Control-arrow shortcuts are commonly reserved by Mission Control and Spaces.";

constexpr std::array reservations = {
    Reservation{{123, ModifierSet::control}, controlArrow},
    Reservation{{124, ModifierSet::control}, controlArrow},
    Reservation{{125, ModifierSet::control}, controlArrow},
    Reservation{{126, ModifierSet::control}, controlArrow},
    Reservation{{12, controlCommand}, "Control-Command-Q locks the screen."},
    Reservation{{49, ModifierSet::control},
                "Control-Space is commonly reserved by macOS for input source switching."},
    Reservation{{49, controlCommand}, "Control-Command-Space opens the emoji and symbols picker."},
};

} // namespace

std::optional<std::string> ShortcutConflictChecker::reservedMessage(const KeyCombo& combo) const {
    const auto found = std::ranges::find(reservations, combo, &Reservation::combo);
    return found == reservations.end() ? std::nullopt : std::optional<std::string>(found->message);
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

} // namespace tavrin

#pragma once

#include "ports/session.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// Tells why a proposed shortcut should not be used.
class ShortcutConflictChecker {
public:
    /// A shortcut that exists already, with its owner as the user knows it.
    struct Assignment {
        std::string label;
        KeyCombo combo;
    };

    /// `reserved`: what this desktop reserves; empty for the usual combinations.
    explicit ShortcutConflictChecker(std::vector<ReservedCombo> reserved = {});

    /// The reason when the system reserves the combo; any further modifier makes it free.
    std::optional<std::string> reservedMessage(const KeyCombo& combo) const;

    /// The reservation, else the first assignment with the same combo; absent when the combo is free.
    std::optional<std::string> conflictMessage(const KeyCombo& combo,
                                               const std::vector<Assignment>& assignments) const;

private:
    std::vector<ReservedCombo> reserved_;
};

/// Most applications have a use of their own for it, as Control-C.
bool isCommonlyUsed(const KeyCombo& combo);

} // namespace tavrin

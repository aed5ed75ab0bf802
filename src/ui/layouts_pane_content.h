#pragma once

#include "base/timestamp.h"
#include "records/key_combo.h"
#include "ui/layout_picture.h"

#include <optional>
#include <string>
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

} // namespace tavrin

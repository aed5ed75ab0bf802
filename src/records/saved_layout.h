#pragma once

#include "base/timestamp.h"
#include "records/saved_display.h"

#include <array>
#include <utility>
#include <vector>

namespace tavrin {

/// Whether a layout remembers which application a window belongs to.
enum class SavedLayoutKind { generic, appSpecific };

/// The texts that stand for the kinds in files.
constexpr auto enumTexts(SavedLayoutKind) {
    return std::array{std::pair{SavedLayoutKind::generic, "generic"},
                      std::pair{SavedLayoutKind::appSpecific, "appSpecific"}};
}

/// A named arrangement of windows for one display setup.
struct SavedLayout {
    Uuid id;
    Uuid profileID;
    std::string name; ///< never empty
    SavedLayoutKind kind = SavedLayoutKind::appSpecific;
    std::vector<SavedLayoutEntry> entries;
    std::optional<std::vector<SavedDisplay>> savedDisplays; ///< absent in layouts without geometry
    Timestamp createdAt;
    Timestamp updatedAt;

    bool operator==(const SavedLayout&) const = default;

    static constexpr auto fields() {
        using Self = SavedLayout;
        return std::tuple{field("id", &Self::id),
                          field("profileID", &Self::profileID),
                          field("name", &Self::name),
                          field("kind", &Self::kind),
                          field("entries", &Self::entries),
                          field("savedDisplays", &Self::savedDisplays),
                          field("createdAt", &Self::createdAt),
                          field("updatedAt", &Self::updatedAt)};
    }
};

} // namespace tavrin

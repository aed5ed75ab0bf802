#pragma once

#include "records/saved_layout_entry.h"

namespace tavrin {

/// A display as it was when a layout was saved.
struct SavedDisplay {
    std::string displayIdentifier;
    SavedLayoutFrame visibleFrame; ///< points, bottom-left origin
    bool isInternal = false;

    bool operator==(const SavedDisplay&) const = default;

    static constexpr auto fields() {
        return std::tuple{field("displayIdentifier", &SavedDisplay::displayIdentifier),
                          field("visibleFrame", &SavedDisplay::visibleFrame),
                          field("isInternal", &SavedDisplay::isInternal)};
    }
};

} // namespace tavrin

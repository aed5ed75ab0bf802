#pragma once

#include "base/record_fields.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tavrin {

/// What identifies a display setup. Both lists inside are sorted on their own, so the n-th identity and
/// the n-th key need not belong to the same display.
struct DisplayFingerprint {
    std::vector<std::string> stableDisplayIDs; ///< sorted; displays without an identity are left out
    std::string arrangementSignature;          ///< the sorted arrangement keys joined with "|"
    std::int64_t displayCount = 0;             ///< all displays, with or without an identity

    bool operator==(const DisplayFingerprint&) const = default;

    static constexpr auto fields() {
        return std::tuple{field("stableDisplayIDs", &DisplayFingerprint::stableDisplayIDs),
                          field("arrangementSignature", &DisplayFingerprint::arrangementSignature),
                          field("displayCount", &DisplayFingerprint::displayCount)};
    }
};

} // namespace tavrin

#pragma once

#include "records/display_fingerprint.h"
#include "records/fuzzy_profile_association.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// A saved display setup: how it is recognised, which layouts belong to it, and which of them is restored
/// automatically.
struct MonitorProfile {
    Uuid id;
    std::string name;
    DisplayFingerprint displayFingerprint;                    ///< as at creation; never changed afterwards
    std::vector<FuzzyProfileAssociation> learnedAssociations; ///< in the order of confirmation
    std::vector<Uuid> layoutIDs;                              ///< in the order of saving
    std::optional<Uuid> defaultLayoutID;
    Timestamp createdAt;
    Timestamp updatedAt;

    bool operator==(const MonitorProfile&) const = default;

    static constexpr auto fields() {
        using Self = MonitorProfile;
        return std::tuple{field("id", &Self::id),
                          field("name", &Self::name),
                          field("displayFingerprint", &Self::displayFingerprint),
                          field("learnedAssociations", &Self::learnedAssociations),
                          field("layoutIDs", &Self::layoutIDs),
                          field("defaultLayoutID", &Self::defaultLayoutID),
                          field("createdAt", &Self::createdAt),
                          field("updatedAt", &Self::updatedAt)};
    }
};

} // namespace tavrin

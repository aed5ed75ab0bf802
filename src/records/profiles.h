#pragma once

#include "base/record_fields.h"
#include "base/timestamp.h"
#include "base/uuid.h"
#include "records/displays.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tavrin {

/// A suggested setup that the user confirmed: from then on the same arrangement counts as that setup.
struct FuzzyProfileAssociation {
    Uuid id;
    std::string confirmedDisplaySignature; ///< the arrangement signature at the confirmation
    Uuid profileID;
    std::string explanation; ///< why the setup was suggested
    Timestamp confirmedAt;

    bool operator==(const FuzzyProfileAssociation&) const = default;

    static constexpr auto fields() {
        using Self = FuzzyProfileAssociation;
        return std::tuple{field("id", &Self::id),
                          field("confirmedDisplaySignature", &Self::confirmedDisplaySignature),
                          field("profileID", &Self::profileID), field("explanation", &Self::explanation),
                          field("confirmedAt", &Self::confirmedAt)};
    }
};

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

/// The verdict on which saved setup is connected.
namespace match {

struct Exact {
    MonitorProfile profile;
    std::string explanation;
    bool operator==(const Exact&) const = default;
};

struct Suggested {
    MonitorProfile profile; ///< the best candidate; the user has to confirm it
    std::string explanation;
    bool operator==(const Suggested&) const = default;
};

struct Ambiguous {
    std::vector<MonitorProfile> profiles; ///< all candidates, best first
    std::string explanation;
    bool operator==(const Ambiguous&) const = default;
};

struct NoMatch {
    bool operator==(const NoMatch&) const = default;
};

} // namespace match

using MatchResult = std::variant<match::Exact, match::Suggested, match::Ambiguous, match::NoMatch>;

/// How a verdict is put into words.
struct ProfileMatchExplanation {
    std::string title;
    std::string message;
    bool operator==(const ProfileMatchExplanation&) const = default;
};

} // namespace tavrin

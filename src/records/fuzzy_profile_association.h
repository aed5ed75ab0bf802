#pragma once

#include "base/record_fields.h"
#include "base/timestamp.h"
#include "base/uuid.h"

#include <string>

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

} // namespace tavrin

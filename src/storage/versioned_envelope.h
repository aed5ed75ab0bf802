#pragma once

#include "base/record_fields.h"
#include "base/timestamp.h"

#include <cstdint>

namespace tavrin {

/// What every data file holds: the payload with the version of the schema and the time of writing.
template <class Payload>
struct VersionedEnvelope {
    std::int64_t schemaVersion = 0;
    Timestamp updatedAt;
    Payload payload;

    bool operator==(const VersionedEnvelope&) const = default;

    static constexpr auto fields() {
        using Self = VersionedEnvelope;
        return std::tuple{field("schemaVersion", &Self::schemaVersion), field("updatedAt", &Self::updatedAt),
                          field("payload", &Self::payload)};
    }
};

} // namespace tavrin

#pragma once

#include "ports/store_error.h"
#include "storage/json_coding.h"
#include "storage/versioned_envelope.h"

#include <expected>
#include <string>
#include <string_view>

namespace tavrin {

/// Wraps payloads for writing and unwraps them on reading. Files of any other schema version are refused:
/// there is no conversion of older or newer ones.
struct StoreMigration {
    std::int64_t schemaVersion = 1; ///< the version that is written and the only one that is read

    /// The bytes of a file with this payload, written at `now`.
    template <class Payload>
    std::expected<std::string, EncodeFailed> encode(const Payload& payload, Timestamp now) const {
        try {
            return json::print(json::write(VersionedEnvelope<Payload>{schemaVersion, now, payload}));
        } catch (const json::EncodingError& error) {
            return std::unexpected(EncodeFailed{error.what()});
        }
    }

    /// The payload in a file's bytes. What does not decode is `DecodeFailed` whatever its version.
    template <class Payload>
    std::expected<Payload, StoreMigrationError> decode(std::string_view bytes) const {
        VersionedEnvelope<Payload> envelope;
        try {
            json::read(json::parse(bytes), envelope, json::Path{});
        } catch (const json::DecodingError& error) {
            return std::unexpected(DecodeFailed{error.what()});
        }
        if (envelope.schemaVersion != schemaVersion)
            return std::unexpected(UnsupportedVersion{envelope.schemaVersion});
        return std::move(envelope.payload);
    }
};

} // namespace tavrin

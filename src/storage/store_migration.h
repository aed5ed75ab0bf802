#pragma once

#include "ports/store_error.h"
#include "storage/json_records.h"

#include <expected>
#include <string>
#include <string_view>

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

/// Wraps payloads for writing and unwraps them on reading. Files of any other schema version are refused:
/// there is no conversion of older or newer ones.
struct StoreMigration {
    std::int64_t schemaVersion = 1; ///< the version that is written and the only one that is read

    /// The bytes of a file with this payload, written at `now`.
    template <class Payload>
    std::expected<std::string, EncodeFailed> encode(const Payload& payload, Timestamp now) const {
        try {
            // Member by member, because an envelope would need a copy of the payload.
            json::Writer writer;
            writer.beginObject();
            writer.key("payload");
            json::write(writer, payload);
            writer.key("schemaVersion");
            json::write(writer, schemaVersion);
            writer.key("updatedAt");
            json::write(writer, now);
            writer.endObject();
            return writer.take();
        } catch (const json::EncodingError& error) {
            return std::unexpected(EncodeFailed{error.what()});
        }
    }

    /// The payload in a file's bytes. What does not decode is `DecodeFailed` whatever its version.
    template <class Payload>
    std::expected<Payload, StoreMigrationError> decode(std::string_view bytes) const {
        VersionedEnvelope<Payload> envelope;
        try {
            json::parse(bytes, [&](const json::Value& document) { json::read(document, envelope, {}); });
        } catch (const json::DecodingError& error) {
            return std::unexpected(DecodeFailed{error.what()});
        }
        if (envelope.schemaVersion != schemaVersion)
            return std::unexpected(UnsupportedVersion{envelope.schemaVersion});
        return std::move(envelope.payload);
    }
};

} // namespace tavrin

#pragma once

#include "base/record_fields.h"
#include "storage/json_coding.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <span>
#include <tuple>
#include <type_traits>
#include <vector>

/// Reading and writing records as JSON, driven by the one description of its fields that each record
/// gives (base/record_fields.h). A key that is missing or stands there twice is refused; unknown keys are
/// ignored. Keys are written in alphabetical order.
namespace tavrin::json {

template <class T>
concept Record = requires { T::fields(); };

template <class T>
concept TextEnum = std::is_enum_v<T> && requires(T value) { enumTexts(value); };

/// How one field of a record is read and written.
struct FieldCode {
    std::string_view key;
    bool isRequired;
    void (*read)(const Value& json, void* record, const Path& path);
    void (*write)(Writer& writer, std::string_view key, const void* record); ///< nothing for an absent value
};
void readRecord(const Value& json, void* record, std::span<const FieldCode> fields, const Path& path);
void writeRecord(Writer& writer, const void* record, std::span<const FieldCode> fields);

// Declared ahead, because records hold lists of records and so on.
template <TextEnum Enum>
void read(const Value& json, Enum& value, const Path& path);
template <class T>
void read(const Value& json, std::vector<T>& values, const Path& path);
template <class T>
void read(const Value& json, std::map<std::string, T>& values, const Path& path);
template <Record T>
void read(const Value& json, T& record, const Path& path);
template <TextEnum Enum>
void write(Writer& writer, Enum value);
template <class T>
void write(Writer& writer, const std::vector<T>& values);
template <class T>
void write(Writer& writer, const std::map<std::string, T>& values);
template <Record T>
void write(Writer& writer, const T& record);

template <TextEnum Enum>
void read(const Value& json, Enum& value, const Path& path) {
    const std::string_view text = readText(json, path);
    for (const auto& [candidate, name] : enumTexts(Enum{})) {
        if (text == name) {
            value = candidate;
            return;
        }
    }
    throw DecodingError(path, "unknown value \"" + std::string(text) + "\"");
}

template <class T>
void read(const Value& json, std::vector<T>& values, const Path& path) {
    values.clear();
    readItems(
        json, path, [&](std::size_t count) { values.reserve(count); },
        [&](const Value& item, const Path& itemPath) { read(item, values.emplace_back(), itemPath); });
}

template <class T>
void read(const Value& json, std::map<std::string, T>& values, const Path& path) {
    values.clear();
    readMembers(json, path, [&](std::string_view key, const Value& member, const Path& memberPath) {
        const auto [entry, isNew] = values.try_emplace(std::string(key));
        if (!isNew)
            throw DecodingError(memberPath, "the key stands there twice");
        read(member, entry->second, memberPath);
    });
}

template <Record T, std::size_t index>
constexpr FieldCode fieldCode() {
    constexpr auto field = std::get<index>(T::fields());
    using Member = std::remove_cvref_t<decltype(std::declval<T&>().*field.member)>;
    constexpr bool isOptional = requires(Member member) {
        member.emplace();
        member.reset();
    };
    const auto readField = [](const Value& json, void* record, const Path& path) {
        constexpr auto own = std::get<index>(T::fields());
        auto& member = static_cast<T*>(record)->*own.member;
        if constexpr (isOptional) {
            if (!isNull(json))
                read(json, member.emplace(), path);
        } else {
            if (own.presence != Presence::defaulted || !isNull(json))
                read(json, member, path);
        }
    };
    const auto writeField = [](Writer& writer, std::string_view key, const void* record) {
        constexpr auto own = std::get<index>(T::fields());
        const auto& member = static_cast<const T*>(record)->*own.member;
        if constexpr (isOptional) {
            if (!member)
                return;
            writer.key(key);
            write(writer, *member);
        } else {
            writer.key(key);
            write(writer, member);
        }
    };
    return {field.key, !isOptional && field.presence == Presence::required, readField, writeField};
}

/// The fields of a record by key, the order in which they are written.
template <Record T>
inline constexpr auto fieldCodes = []<std::size_t... indices>(std::index_sequence<indices...>) {
    std::array codes{fieldCode<T, indices>()...};
    std::ranges::sort(codes, {}, &FieldCode::key);
    return codes;
}(std::make_index_sequence<std::tuple_size_v<decltype(T::fields())>>());

template <Record T>
void read(const Value& json, T& record, const Path& path) {
    readRecord(json, &record, fieldCodes<T>, path);
}

template <TextEnum Enum>
void write(Writer& writer, Enum value) {
    for (const auto& [candidate, name] : enumTexts(Enum{}))
        if (candidate == value)
            return writer.text(name);
    throw EncodingError("a value without a text");
}

template <class T>
void write(Writer& writer, const std::vector<T>& values) {
    writer.beginList();
    for (const auto& value : values) {
        writer.item();
        write(writer, value);
    }
    writer.endList();
}

template <class T>
void write(Writer& writer, const std::map<std::string, T>& values) {
    writer.beginObject();
    for (const auto& [key, value] : values) {
        writer.key(key);
        write(writer, value);
    }
    writer.endObject();
}

template <Record T>
void write(Writer& writer, const T& record) {
    writeRecord(writer, &record, fieldCodes<T>);
}

} // namespace tavrin::json

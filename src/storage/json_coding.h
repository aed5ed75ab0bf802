#pragma once

#include "base/record_fields.h"
#include "base/timestamp.h"
#include "base/uuid.h"
#include "records/key_combo.h"
#include "storage/json_errors.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

/// Reading and writing records as JSON, driven by the one description of its fields that each record
/// gives (base/record_fields.h). Reading is strict: a value of another kind, a number out of range or a
/// missing required key is refused; unknown keys are ignored. Only storage/store_migration.h uses this, and
/// turns the exceptions below into typed errors.
namespace tavrin::json {

using Json = nlohmann::json;

template <class T>
concept Record = requires { T::fields(); };

template <class T>
concept TextEnum = std::is_enum_v<T> && requires(T value) { enumTexts(value); };

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

void read(const Json& json, bool& value, const Path& path);
void read(const Json& json, double& value, const Path& path);
void read(const Json& json, std::int64_t& value, const Path& path);
void read(const Json& json, std::uint64_t& value, const Path& path);
void read(const Json& json, std::uint16_t& value, const Path& path);
void read(const Json& json, std::string& value, const Path& path);
void read(const Json& json, Uuid& value, const Path& path);
void read(const Json& json, Timestamp& value, const Path& path);
void read(const Json& json, ModifierSet& value, const Path& path);

Json write(bool value);
Json write(double value);
Json write(std::int64_t value);
Json write(std::uint64_t value);
Json write(std::uint16_t value);
Json write(const std::string& value);
Json write(const Uuid& value);
Json write(Timestamp value);
Json write(ModifierSet value);

// Declared ahead, because records hold lists of records and so on.
template <TextEnum Enum>
void read(const Json& json, Enum& value, const Path& path);
template <class T>
void read(const Json& json, std::vector<T>& values, const Path& path);
template <class T>
void read(const Json& json, std::map<std::string, T>& values, const Path& path);
template <Record T>
void read(const Json& json, T& record, const Path& path);
template <TextEnum Enum>
Json write(Enum value);
template <class T>
Json write(const std::vector<T>& values);
template <class T>
Json write(const std::map<std::string, T>& values);
template <Record T>
Json write(const T& record);

template <TextEnum Enum>
void read(const Json& json, Enum& value, const Path& path) {
    std::string text;
    read(json, text, path);
    for (const auto& [candidate, name] : enumTexts(Enum{})) {
        if (text == name) {
            value = candidate;
            return;
        }
    }
    throw DecodingError(path, "unknown value \"" + text + "\"");
}

template <class T>
void read(const Json& json, std::vector<T>& values, const Path& path) {
    if (!json.is_array())
        throw DecodingError(path, "expected a list");
    values.resize(json.size());
    for (std::size_t i = 0; i < json.size(); ++i)
        read(json[i], values[i], Path{&path, {}, i});
}

template <class T>
void read(const Json& json, std::map<std::string, T>& values, const Path& path) {
    if (!json.is_object())
        throw DecodingError(path, "expected an object");
    values.clear();
    for (const auto& [key, value] : json.items())
        read(value, values[key], Path{&path, key});
}

template <Record T>
void read(const Json& json, T& record, const Path& path) {
    if (!json.is_object())
        throw DecodingError(path, "expected an object");
    const auto readField = [&]<class Value>(const Field<T, Value>& field) {
        const auto found = json.find(field.key);
        const bool missing = found == json.end();
        const bool absent = missing || found->is_null();
        Value& member = record.*field.member;
        const Path fieldPath{&path, field.key};
        if constexpr (isOptional<Value>) {
            if (absent)
                member.reset();
            else
                read(*found, member.emplace(), fieldPath);
        } else if (field.presence == Presence::defaulted) {
            if (!absent)
                read(*found, member, fieldPath);
        } else if (missing) {
            throw DecodingError(fieldPath, "the key is missing");
        } else {
            read(*found, member, fieldPath);
        }
    };
    std::apply([&](const auto&... fields) { (readField(fields), ...); }, T::fields());
}

template <TextEnum Enum>
Json write(Enum value) {
    for (const auto& [candidate, name] : enumTexts(Enum{}))
        if (candidate == value)
            return name;
    throw EncodingError("a value without a text");
}

template <class T>
Json write(const std::vector<T>& values) {
    Json json = Json::array();
    for (const auto& value : values)
        json.push_back(write(value));
    return json;
}

template <class T>
Json write(const std::map<std::string, T>& values) {
    Json json = Json::object();
    for (const auto& [key, value] : values)
        json[key] = write(value);
    return json;
}

template <Record T>
Json write(const T& record) {
    Json json = Json::object();
    const auto writeField = [&]<class Value>(const Field<T, Value>& field) {
        const Value& member = record.*field.member;
        if constexpr (isOptional<Value>) {
            if (member)
                json[field.key] = write(*member);
        } else {
            json[field.key] = write(member);
        }
    };
    std::apply([&](const auto&... fields) { (writeField(fields), ...); }, T::fields());
    return json;
}

/// The document in `bytes`; throws `DecodingError`.
Json parse(std::string_view bytes);

/// Indented, with the keys of every object in alphabetical order; throws `EncodingError`.
std::string print(const Json& json);

} // namespace tavrin::json

#include "storage/json_coding.h"

#include <cmath>
#include <limits>

namespace tavrin::json {
namespace {

template <class Integer>
Integer readInteger(const Json& json, const Path& path) {
    if (!json.is_number_integer())
        throw DecodingError(path, "expected a whole number");
    const bool fits = json.is_number_unsigned() ? std::in_range<Integer>(json.get<std::uint64_t>())
                                                : std::in_range<Integer>(json.get<std::int64_t>());
    if (!fits)
        throw DecodingError(path, "the number is out of range");
    return json.get<Integer>();
}

} // namespace

std::string Path::text() const {
    if (!parent)
        return std::string(key);
    const std::string prefix = parent->text();
    if (key.empty())
        return prefix + "[" + std::to_string(index) + "]";
    return prefix.empty() ? std::string(key) : prefix + "." + std::string(key);
}

DecodingError::DecodingError(const Path& path, std::string_view problem)
    : std::runtime_error((path.text().empty() ? std::string("the file") : path.text()) + ": " +
                         std::string(problem)) {}

void read(const Json& json, bool& value, const Path& path) {
    if (!json.is_boolean())
        throw DecodingError(path, "expected true or false");
    value = json.get<bool>();
}

void read(const Json& json, double& value, const Path& path) {
    if (!json.is_number())
        throw DecodingError(path, "expected a number");
    value = json.get<double>();
}

void read(const Json& json, std::int64_t& value, const Path& path) {
    value = readInteger<std::int64_t>(json, path);
}

void read(const Json& json, std::uint64_t& value, const Path& path) {
    value = readInteger<std::uint64_t>(json, path);
}

void read(const Json& json, std::uint16_t& value, const Path& path) {
    value = readInteger<std::uint16_t>(json, path);
}

void read(const Json& json, std::string& value, const Path& path) {
    if (!json.is_string())
        throw DecodingError(path, "expected a text");
    value = json.get_ref<const std::string&>();
}

void read(const Json& json, Uuid& value, const Path& path) {
    std::string text;
    read(json, text, path);
    const auto uuid = Uuid::parse(text);
    if (!uuid)
        throw DecodingError(path, "expected an identifier of 36 characters");
    value = *uuid;
}

void read(const Json& json, Timestamp& value, const Path& path) {
    std::string text;
    read(json, text, path);
    const auto time = parseIso8601(text);
    if (!time)
        throw DecodingError(path, "expected a date such as 2026-03-01T09:30:00Z");
    value = *time;
}

void read(const Json& json, ModifierSet& value, const Path& path) {
    read(json, value.rawValue, path);
}

Json write(bool value) {
    return value;
}

Json write(double value) {
    if (!std::isfinite(value))
        throw EncodingError("a number that is not finite");
    return value;
}

Json write(std::int64_t value) {
    return value;
}
Json write(std::uint64_t value) {
    return value;
}
Json write(std::uint16_t value) {
    return value;
}
Json write(const std::string& value) {
    return value;
}
Json write(const Uuid& value) {
    return value.text();
}
Json write(Timestamp value) {
    return iso8601Text(value);
}
Json write(ModifierSet value) {
    return value.rawValue;
}

Json parse(std::string_view bytes) {
    try {
        return Json::parse(bytes);
    } catch (const Json::exception& error) {
        throw DecodingError({}, error.what());
    }
}

std::string print(const Json& json) {
    try {
        return json.dump(2) + "\n";
    } catch (const Json::exception& error) {
        throw EncodingError(error.what());
    }
}

} // namespace tavrin::json

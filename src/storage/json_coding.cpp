#include "storage/json_records.h"

#include <simdjson.h>

#include <charconv>
#include <cmath>
#include <limits>

namespace tavrin::json {

struct Value {
    simdjson::dom::element element;
};

namespace {

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

template <class Integer>
Integer readInteger(const Value& json, const Path& path) {
    const auto& element = json.element;
    if (!element.is_int64() && !element.is_uint64())
        throw DecodingError(path, "expected a whole number");
    const bool isSigned = element.is_int64();
    const std::int64_t signedNumber = isSigned ? element.get_int64().value_unsafe() : 0;
    const std::uint64_t unsignedNumber = isSigned ? 0 : element.get_uint64().value_unsafe();
    if (isSigned ? !std::in_range<Integer>(signedNumber) : !std::in_range<Integer>(unsignedNumber))
        throw DecodingError(path, "the number is out of range");
    return isSigned ? static_cast<Integer>(signedNumber) : static_cast<Integer>(unsignedNumber);
}

template <class Integer>
void writeInteger(Writer& writer, Integer value) {
    std::array<char, std::numeric_limits<Integer>::digits10 + 3> buffer;
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    writer.raw({buffer.data(), end});
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
    : std::runtime_error((path.text().empty() ? "" : path.text() + ": ") + std::string(problem)) {}

void parse(std::string_view bytes, const std::function<void(const Value&)>& read) {
    if (bytes.starts_with(byteOrderMark))
        bytes.remove_prefix(byteOrderMark.size());
    simdjson::dom::parser parser;
    simdjson::dom::element element;
    if (const auto error = parser.parse(bytes.data(), bytes.size()).get(element))
        throw DecodingError({}, simdjson::error_message(error));
    read(Value{element});
}

bool isNull(const Value& json) {
    return json.element.is_null();
}

std::string_view readText(const Value& json, const Path& path) {
    std::string_view text;
    if (json.element.get(text))
        throw DecodingError(path, "expected a text");
    return text;
}

void readItems(const Value& json, const Path& path, const std::function<void(std::size_t)>& reserve,
               const std::function<void(const Value&, const Path&)>& read) {
    simdjson::dom::array items;
    if (json.element.get(items))
        throw DecodingError(path, "expected a list");
    reserve(items.size());
    std::size_t index = 0;
    for (const auto item : items)
        read(Value{item}, Path{&path, {}, index++});
}

void readMembers(const Value& json, const Path& path,
                 const std::function<void(std::string_view, const Value&, const Path&)>& read) {
    simdjson::dom::object members;
    if (json.element.get(members))
        throw DecodingError(path, "expected an object");
    for (const auto member : members)
        read(member.key, Value{member.value}, Path{&path, member.key});
}

void readRecord(const Value& json, void* record, std::span<const FieldCode> fields, const Path& path) {
    simdjson::dom::object members;
    if (json.element.get(members))
        throw DecodingError(path, "expected an object");
    std::uint64_t seen = 0;
    std::size_t next = 0; // files have the order of the fields
    for (const auto member : members) {
        std::size_t tried = 0;
        while (tried < fields.size() && fields[next].key != member.key) {
            next = (next + 1) % fields.size();
            ++tried;
        }
        if (tried == fields.size())
            continue;
        const Path fieldPath{&path, member.key};
        const std::uint64_t bit = std::uint64_t{1} << next;
        if (seen & bit)
            throw DecodingError(fieldPath, "the key stands there twice");
        seen |= bit;
        fields[next].read(Value{member.value}, record, fieldPath);
        next = (next + 1) % fields.size();
    }
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (fields[i].isRequired && !(seen & (std::uint64_t{1} << i)))
            throw DecodingError(Path{&path, fields[i].key}, "the key is missing");
}

void writeRecord(Writer& writer, const void* record, std::span<const FieldCode> fields) {
    writer.beginObject();
    for (const FieldCode& field : fields)
        field.write(writer, field.key, record);
    writer.endObject();
}

void read(const Value& json, bool& value, const Path& path) {
    if (json.element.get(value))
        throw DecodingError(path, "expected true or false");
}

void read(const Value& json, double& value, const Path& path) {
    if (json.element.get(value))
        throw DecodingError(path, "expected a number");
}

void read(const Value& json, std::int64_t& value, const Path& path) {
    value = readInteger<std::int64_t>(json, path);
}

void read(const Value& json, std::uint64_t& value, const Path& path) {
    value = readInteger<std::uint64_t>(json, path);
}

void read(const Value& json, std::uint16_t& value, const Path& path) {
    value = readInteger<std::uint16_t>(json, path);
}

void read(const Value& json, std::string& value, const Path& path) {
    value = readText(json, path);
}

void read(const Value& json, Uuid& value, const Path& path) {
    const auto uuid = Uuid::parse(readText(json, path));
    if (!uuid)
        throw DecodingError(path, "expected an identifier of 36 characters");
    value = *uuid;
}

void read(const Value& json, Timestamp& value, const Path& path) {
    const auto time = parseIso8601(readText(json, path));
    if (!time)
        throw DecodingError(path, "expected a date such as 2026-03-01T09:30:00Z");
    value = *time;
}

void read(const Value& json, ModifierSet& value, const Path& path) {
    read(json, value.rawValue, path);
}

void Writer::begin(char bracket) {
    text_ += bracket;
    ++depth_;
    isEmpty_ = true;
}

void Writer::end(char bracket) {
    --depth_;
    if (!isEmpty_)
        newLine();
    text_ += bracket;
    isEmpty_ = false;
}

void Writer::newLine() {
    text_ += '\n';
    text_.append(2 * depth_, ' ');
}

void Writer::item() {
    if (!isEmpty_)
        text_ += ',';
    isEmpty_ = false;
    newLine();
}

void Writer::key(std::string_view key) {
    item();
    text(key);
    text_ += ": ";
}

void Writer::text(std::string_view text) {
    const auto isBeyondAscii = [](char c) { return static_cast<unsigned char>(c) >= 0x80; };
    if (std::ranges::any_of(text, isBeyondAscii) && !simdjson::validate_utf8(text))
        throw EncodingError("a text that is not UTF-8");
    text_ += '"';
    while (!text.empty()) {
        const auto special = std::ranges::find_if(
            text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\'; });
        text_.append(text.begin(), special);
        if (special == text.end())
            break;
        constexpr std::string_view named = "\"\\\b\f\n\r\t";
        constexpr std::string_view names = "\"\\bfnrt";
        constexpr std::string_view digits = "0123456789abcdef";
        text_ += '\\';
        if (const auto position = named.find(*special); position != std::string_view::npos)
            text_ += names[position];
        else
            (text_ += "u00") += {digits[static_cast<unsigned char>(*special) / 16],
                                 digits[static_cast<unsigned char>(*special) % 16]};
        text.remove_prefix(static_cast<std::size_t>(special - text.begin()) + 1);
    }
    text_ += '"';
}

void write(Writer& writer, bool value) {
    writer.raw(value ? "true" : "false");
}

void write(Writer& writer, double value) {
    if (!std::isfinite(value))
        throw EncodingError("a number that is not finite");
    // Not std::to_chars, which gives one number in two thousand another digit than the files have had.
    std::array<char, 64> buffer;
    const std::string_view text{
        buffer.data(), simdjson::internal::to_chars(buffer.data(), buffer.data() + buffer.size(), value)};
    writer.raw(text);
    if (text.find_first_of(".e") == std::string_view::npos)
        writer.raw(".0"); // newer versions of the library write 0 for 0.0
}

void write(Writer& writer, std::int64_t value) {
    writeInteger(writer, value);
}
void write(Writer& writer, std::uint64_t value) {
    writeInteger(writer, value);
}
void write(Writer& writer, std::uint16_t value) {
    writeInteger(writer, value);
}
void write(Writer& writer, const std::string& value) {
    writer.text(value);
}
void write(Writer& writer, const Uuid& value) {
    writer.text(value.text());
}
void write(Writer& writer, Timestamp value) {
    const std::string text = iso8601Text(value);
    if (!parseIso8601(text))
        throw EncodingError("a date beyond the years 1 to 9999");
    writer.text(text);
}
void write(Writer& writer, ModifierSet value) {
    write(writer, value.rawValue);
}

} // namespace tavrin::json

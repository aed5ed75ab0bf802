#pragma once

#include "base/timestamp.h"
#include "base/uuid.h"
#include "records/key_combo.h"

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

/// Reading and writing single values as JSON; storage/json_records.h makes records of them. Reading is
/// strict: a value of another kind or a number out of range is refused. Only storage/store_migration.h lets
/// this out, and turns the exceptions below into typed errors.
namespace tavrin::json {

/// Where in the file a value stands.
struct Path {
    const Path* parent = nullptr;
    std::string_view key;
    std::size_t index = 0;

    std::string text() const;
};

struct DecodingError : std::runtime_error {
    DecodingError(const Path& path, std::string_view problem);
};

struct EncodingError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A value of a parsed document; lives as long as that.
struct Value;

/// Calls `read` with the document in `bytes`; throws `DecodingError`, also when more follows it.
void parse(std::string_view bytes, const std::function<void(const Value&)>& read);

/// Builds a document: indented by two blanks, a value to a line.
class Writer {
public:
    void beginObject() { begin('{'); }
    void key(std::string_view key);
    void endObject() { end('}'); }
    void beginList() { begin('['); }
    void item(); ///< announces the next value of the list
    void endList() { end(']'); }

    /// A value written out, such as a number.
    void raw(std::string_view text) { text_ += text; }
    void text(std::string_view text);

    std::string take() { return std::move(text_) + "\n"; }

private:
    void begin(char bracket);
    void end(char bracket);
    void newLine();

    std::string text_;
    std::size_t depth_ = 0;
    bool isEmpty_ = true; ///< nothing stands in the innermost object or list yet
};

void read(const Value& json, bool& value, const Path& path);
void read(const Value& json, double& value, const Path& path);
void read(const Value& json, std::int64_t& value, const Path& path);
void read(const Value& json, std::uint64_t& value, const Path& path);
void read(const Value& json, std::uint16_t& value, const Path& path);
void read(const Value& json, std::string& value, const Path& path);
void read(const Value& json, Uuid& value, const Path& path);
void read(const Value& json, Timestamp& value, const Path& path);
void read(const Value& json, ModifierSet& value, const Path& path);

void write(Writer& writer, bool value);
void write(Writer& writer, double value);
void write(Writer& writer, std::int64_t value);
void write(Writer& writer, std::uint64_t value);
void write(Writer& writer, std::uint16_t value);
void write(Writer& writer, const std::string& value);
void write(Writer& writer, const Uuid& value);
void write(Writer& writer, Timestamp value);
void write(Writer& writer, ModifierSet value);

// What storage/json_records.h is made of.
bool isNull(const Value& json);
std::string_view readText(const Value& json, const Path& path);
void readItems(const Value& json, const Path& path, const std::function<void(std::size_t)>& reserve,
               const std::function<void(const Value&, const Path&)>& read);
void readMembers(const Value& json, const Path& path,
                 const std::function<void(std::string_view, const Value&, const Path&)>& read);

} // namespace tavrin::json

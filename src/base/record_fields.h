#pragma once

#include <tuple>

namespace tavrin {

/// What a reader does when a record's key is missing (an explicit null counts as missing where the key
/// may be missing). A `std::optional` member is read as absent and left out when written.
enum class Presence { required, defaulted };

/// One line of a record's description: the key in its files and the member that holds the value. A
/// record lists its fields once, in `static constexpr auto fields()`; reading, writing and the
/// required-or-optional rules all come from that list.
template <class Record, class Value>
struct Field {
    const char* key;
    Value Record::* member;
    Presence presence;
};

/// A key that must be there, unless the member is a `std::optional`.
template <class Record, class Value>
constexpr Field<Record, Value> field(const char* key, Value Record::* member) {
    return {key, member, Presence::required};
}

/// A key that keeps the member's default when it is missing; it is always written.
template <class Record, class Value>
constexpr Field<Record, Value> defaultedField(const char* key, Value Record::* member) {
    return {key, member, Presence::defaulted};
}

} // namespace tavrin

#include "base/uuid.h"

#include <algorithm>
#include <uuid/uuid.h>

namespace tavrin {
namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

} // namespace

Uuid Uuid::random() {
    Uuid uuid;
    uuid_generate_random(uuid.bytes.data());
    return uuid;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    // Not uuid_parse, which takes longer than the rest of reading a record.
    if (text.size() != 36)
        return std::nullopt;
    Uuid uuid;
    std::size_t position = 0;
    for (std::size_t i = 0; i < uuid.bytes.size(); ++i) {
        if ((i == 4 || i == 6 || i == 8 || i == 10) && text[position++] != '-')
            return std::nullopt;
        const int high = hexDigit(text[position++]);
        const int low = hexDigit(text[position++]);
        if (high < 0 || low < 0)
            return std::nullopt;
        uuid.bytes[i] = static_cast<std::uint8_t>(high * 16 + low);
    }
    return uuid;
}

std::string Uuid::text() const {
    char buffer[37];
    uuid_unparse_upper(bytes.data(), buffer);
    return buffer;
}

} // namespace tavrin

#include "base/uuid.h"

#include <algorithm>
#include <uuid/uuid.h>

namespace tavrin {

Uuid Uuid::random() {
    Uuid uuid;
    uuid_generate_random(uuid.bytes.data());
    return uuid;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    Uuid uuid;
    if (text.size() != 36 || uuid_parse_range(text.data(), text.data() + text.size(), uuid.bytes.data()) != 0)
        return std::nullopt;
    return uuid;
}

std::string Uuid::text() const {
    char buffer[37];
    uuid_unparse_upper(bytes.data(), buffer);
    return buffer;
}

} // namespace tavrin

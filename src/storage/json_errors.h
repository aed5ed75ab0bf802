#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

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

} // namespace tavrin::json

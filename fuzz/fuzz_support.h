#pragma once

#include "base/fatal.h"

#include <cstddef>
#include <cstdint>
#include <fuzzer/FuzzedDataProvider.h>
#include <string_view>

namespace tavrin::fuzz {

/// A law that must hold for every input; a broken one ends the run with a finding.
inline void require(bool law, const char* description) {
    if (!law)
        fatal(description);
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

} // namespace tavrin::fuzz

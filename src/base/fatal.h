#pragma once

#include <cstdint>

namespace tavrin {

/// Stops the program with a message on standard error. For programming faults only, never for bad input.
[[noreturn]] void fatal(const char* message);

/// `a - b` and `a + b`; a result beyond 64 bits is a programming fault.
std::int64_t checkedDifference(std::int64_t a, std::int64_t b);
std::int64_t checkedSum(std::int64_t a, std::int64_t b);

} // namespace tavrin

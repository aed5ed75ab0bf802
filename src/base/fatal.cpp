#include "base/fatal.h"

#include <cstdio>
#include <cstdlib>

namespace tavrin {

void fatal(const char* message) {
    std::fprintf(stderr, "tavrin: %s\n", message);
    std::abort();
}

std::int64_t checkedDifference(std::int64_t a, std::int64_t b) {
    std::int64_t result = 0;
    if (__builtin_sub_overflow(a, b, &result))
        fatal("integer overflow in a difference");
    return result;
}

std::int64_t checkedSum(std::int64_t a, std::int64_t b) {
    std::int64_t result = 0;
    if (__builtin_add_overflow(a, b, &result))
        fatal("integer overflow in a sum");
    return result;
}

} // namespace tavrin

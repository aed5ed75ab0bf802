#include "platform/unsupported/unsupported_platform.h"

#include <type_traits>

namespace tavrin {

// Every port is complete: a new operation on one of them must be answered here too.
static_assert(std::is_default_constructible_v<UnsupportedPlatform>);

} // namespace tavrin

#include "ports/store_error.h"

#include <fmt/format.h>

#include <system_error>

namespace tavrin {

std::string FileError::description() const {
    return fmt::format("{} {}: {}", operation, path, std::generic_category().message(code));
}

} // namespace tavrin

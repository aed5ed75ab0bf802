#include "platform/unsupported/unsupported_login_item.h"

#include <cerrno>

namespace tavrin {
namespace {

std::unexpected<PlatformError> notAvailable() {
    return std::unexpected(PlatformError{ENOTSUP, "Not available on this platform."});
}

} // namespace

std::expected<void, PlatformError> UnsupportedLoginItem::registerItem() {
    return notAvailable();
}

std::expected<void, PlatformError> UnsupportedLoginItem::unregisterItem() {
    return notAvailable();
}

} // namespace tavrin

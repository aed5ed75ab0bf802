#pragma once

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// Properties as other programs set them: wrong types and formats count as absent, lengths are bounded by
/// the request. All readers accept null, the answer for a window that is gone.

/// Asks for at most `maximumBytes` of a property of any type.
xcb_get_property_cookie_t requestProperty(xcb_connection_t* connection, xcb_window_t window,
                                          xcb_atom_t property, std::size_t maximumBytes);

/// The elements of a property of 32-bit values; empty when it is absent or of another format.
std::vector<std::uint32_t> cardinals(const xcb_get_property_reply_t* reply);

/// The first element of such a property.
std::optional<std::uint32_t> cardinal(const xcb_get_property_reply_t* reply);

/// The bytes of a property of 8-bit values; empty when it is absent or of another format.
std::string_view bytes(const xcb_get_property_reply_t* reply);

/// The texts of a property, which NUL characters separate, as valid UTF-8 of at most `maximumBytes` each;
/// Latin-1 is converted when the type says so. Empty when it is absent or of another format.
std::vector<std::string> texts(const xcb_get_property_reply_t* reply, std::size_t maximumBytes);

/// The first of these texts; absent when it is empty.
std::optional<std::string> text(const xcb_get_property_reply_t* reply, std::size_t maximumBytes);

/// The same for a property that may be of the type `compoundText` (the server's number for it) too.
std::optional<std::string> legacyText(const xcb_get_property_reply_t* reply, std::size_t maximumBytes,
                                      xcb_atom_t compoundText);

} // namespace tavrin

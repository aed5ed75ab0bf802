#include "platform/x11/x11_property.h"

#include "base/text.h"

#include <algorithm>
#include <cstring>

namespace tavrin {
namespace {

std::string utf8FromLatin1(std::string_view latin1) {
    std::string utf8;
    for (const char c : latin1) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            utf8 += c;
        } else {
            utf8 += static_cast<char>(0xC0 | byte >> 6);
            utf8 += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return utf8;
}

std::string decoded(const xcb_get_property_reply_t& reply, std::string_view piece, std::size_t maximumBytes) {
    return reply.type == XCB_ATOM_STRING ? sanitizedUtf8(utf8FromLatin1(piece), maximumBytes)
                                         : sanitizedUtf8(piece, maximumBytes);
}

} // namespace

xcb_get_property_cookie_t requestProperty(xcb_connection_t* connection, xcb_window_t window,
                                          xcb_atom_t property, std::size_t maximumBytes) {
    return xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0,
                            static_cast<std::uint32_t>((maximumBytes + 3) / 4));
}

std::vector<std::uint32_t> cardinals(const xcb_get_property_reply_t* reply) {
    if (!reply || reply->format != 32)
        return {};
    std::vector<std::uint32_t> values(static_cast<std::size_t>(xcb_get_property_value_length(reply)) / 4);
    if (!values.empty())
        std::memcpy(values.data(), xcb_get_property_value(reply), values.size() * 4);
    return values;
}

std::optional<std::uint32_t> cardinal(const xcb_get_property_reply_t* reply) {
    const auto values = cardinals(reply);
    return values.empty() ? std::nullopt : std::optional(values.front());
}

std::string_view bytes(const xcb_get_property_reply_t* reply) {
    if (!reply || reply->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply)),
            static_cast<std::size_t>(xcb_get_property_value_length(reply))};
}

std::vector<std::string> texts(const xcb_get_property_reply_t* reply, std::size_t maximumBytes) {
    std::vector<std::string> result;
    for (auto rest = bytes(reply); !rest.empty();) {
        const auto piece = rest.substr(0, rest.find('\0'));
        rest.remove_prefix(std::min(piece.size() + 1, rest.size()));
        result.push_back(decoded(*reply, piece, maximumBytes));
    }
    return result;
}

std::optional<std::string> legacyText(const xcb_get_property_reply_t* reply, std::size_t maximumBytes,
                                      xcb_atom_t compoundText) {
    if (!reply || reply->type != compoundText)
        return text(reply, maximumBytes);
    const auto whole = bytes(reply);
    auto title = sanitizedUtf8(utf8FromCompoundText(whole.substr(0, whole.find('\0'))), maximumBytes);
    return title.empty() ? std::nullopt : std::optional(std::move(title));
}

std::optional<std::string> text(const xcb_get_property_reply_t* reply, std::size_t maximumBytes) {
    const auto whole = bytes(reply);
    auto first =
        whole.empty() ? std::string() : decoded(*reply, whole.substr(0, whole.find('\0')), maximumBytes);
    return first.empty() ? std::nullopt : std::optional(std::move(first));
}

} // namespace tavrin

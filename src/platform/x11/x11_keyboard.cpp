#include "platform/x11/x11_keyboard.h"

#include "platform/x11/x11_keyboard_protocol.h"
#include "platform/x11/x11_reply.h"

#include <string_view>

namespace tavrin {
namespace {

KeyPositions::Names keyNames(const xcb_xkb_get_names_reply_t& reply) {
    KeyPositions::Names names;
    if ((reply.which & XCB_XKB_NAME_DETAIL_KEY_NAMES) == 0)
        return names;
    xcb_xkb_get_names_value_list_t list{};
    xcb_xkb_get_names_value_list_unpack(xcb_xkb_get_names_value_list(&reply), reply.nTypes, reply.indicators,
                                        reply.virtualMods, reply.groupNames, reply.nKeys, reply.nKeyAliases,
                                        reply.nRadioGroups, reply.which, &list);
    for (int i = 0; i < reply.nKeys && reply.firstKey + i <= 0xFF; ++i) {
        const std::string_view name(list.keyNames[i].name, sizeof list.keyNames[i].name);
        if (const auto length = std::min(name.find('\0'), name.size()); length > 0)
            names.emplace(static_cast<std::uint8_t>(reply.firstKey + i), name.substr(0, length));
    }
    return names;
}

KeyboardModifiers::Symbols modifierSymbols(const xcb_get_modifier_mapping_reply_t& modifiers,
                                           const xcb_get_keyboard_mapping_reply_t& symbols, int firstKey) {
    KeyboardModifiers::Symbols result;
    const auto* keys = xcb_get_modifier_mapping_keycodes(&modifiers);
    const auto keyCount = xcb_get_modifier_mapping_keycodes_length(&modifiers);
    const auto* table = xcb_get_keyboard_mapping_keysyms(&symbols);
    const auto tableSize = xcb_get_keyboard_mapping_keysyms_length(&symbols);
    for (int i = 0; i < keyCount; ++i) {
        const int begin = (keys[i] - firstKey) * symbols.keysyms_per_keycode;
        const int end = begin + symbols.keysyms_per_keycode;
        if (begin < 0 || end > tableSize)
            continue;
        auto& ofModifier = result.at(static_cast<std::size_t>(i / modifiers.keycodes_per_modifier));
        ofModifier.insert(ofModifier.end(), table + begin, table + end);
    }
    return result;
}

} // namespace

std::optional<X11Keyboard> readKeyboard(X11Connection& server) {
    auto* connection = server.get();
    const auto* setup = xcb_get_setup(connection);
    const auto namesCookie =
        xcb_xkb_get_names(connection, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_NAME_DETAIL_KEY_NAMES);
    const auto modifiersCookie = xcb_get_modifier_mapping(connection);
    const auto symbolsCookie =
        xcb_get_keyboard_mapping(connection, setup->min_keycode,
                                 static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1));
    const auto names = owned(xcb_xkb_get_names_reply(connection, namesCookie, nullptr));
    const auto modifiers = owned(xcb_get_modifier_mapping_reply(connection, modifiersCookie, nullptr));
    const auto symbols = owned(xcb_get_keyboard_mapping_reply(connection, symbolsCookie, nullptr));
    if (!names || !modifiers || !symbols)
        return std::nullopt;
    return X11Keyboard{.positions = KeyPositions(keyNames(*names)),
                       .modifiers =
                           KeyboardModifiers(modifierSymbols(*modifiers, *symbols, setup->min_keycode))};
}

} // namespace tavrin

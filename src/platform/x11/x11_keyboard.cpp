#include "platform/x11/x11_keyboard.h"

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_keyboard_protocol.h"
#include "records/key_combo.h"

#include <algorithm>
#include <string_view>

namespace tavrin {
namespace {

/// X numbers a key 8 higher than the input layer does.
constexpr std::uint8_t keyOffset = 8;

/// The keys from here on are those that old keyboards did not have; their numbers differ.
constexpr std::uint8_t firstRenumberedKey = 97;

struct NamedKey {
    std::string_view name;
    std::uint32_t evdevCode;
};

constexpr std::string_view telltaleName = "UP";
constexpr std::uint8_t telltaleKey = 103 + keyOffset;

constexpr NamedKey namedKeys[] = {
    {"HOME", 102}, {"UP", 103},   {"PGUP", 104}, {"LEFT", 105}, {"RGHT", 106}, {"END", 107},  {"DOWN", 108},
    {"PGDN", 109}, {"INS", 110},  {"DELE", 111}, {"KPEN", 96},  {"KPDV", 98},  {"KPEQ", 117}, {"PRSC", 99},
    {"PAUS", 119}, {"MENU", 127}, {"COMP", 127}, {"FK13", 183}, {"FK14", 184}, {"FK15", 185}, {"FK16", 186},
    {"FK17", 187}, {"FK18", 188}, {"FK19", 189}, {"FK20", 190}, {"AB11", 89},  {"AE13", 124}, {"XFER", 92},
    {"HENK", 92},  {"NFER", 94},  {"MUHE", 94},  {"HKTG", 93},  {"JPCM", 95},  {"HNGL", 122}, {"HJCV", 123},
    {"MUTE", 113}, {"VOL-", 114}, {"VOL+", 115}, {"HELP", 138}};

constexpr std::uint8_t shiftMask = 1 << 0;
constexpr std::uint8_t controlMask = 1 << 2;
constexpr std::size_t firstFreeModifier = 3;

/// The symbols of the left and the right key.
struct KeyPair {
    std::uint32_t left;
    std::uint32_t right;
};
constexpr KeyPair metaKeys{0xFFE7, 0xFFE8};
constexpr KeyPair altKeys{0xFFE9, 0xFFEA};
constexpr KeyPair superKeys{0xFFEB, 0xFFEC};
constexpr KeyPair hyperKeys{0xFFED, 0xFFEE};

std::uint8_t modifiersSetBy(const KeyPair& keys, const KeyboardModifiers::Symbols& symbols) {
    std::uint8_t mask = 0;
    for (std::size_t i = firstFreeModifier; i < symbols.size(); ++i)
        if (std::ranges::any_of(symbols[i],
                                [&](auto symbol) { return symbol == keys.left || symbol == keys.right; }))
            mask = static_cast<std::uint8_t>(mask | 1U << i);
    return mask;
}

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

KeyPositions::KeyPositions(const Names& names) {
    const bool isRenumbered = std::ranges::any_of(
        names, [](const auto& entry) { return entry.second == telltaleName && entry.first != telltaleKey; });
    if (!isRenumbered)
        return;
    renumbered_.emplace();
    for (const auto& [key, name] : names) {
        const auto* found = std::ranges::find(namedKeys, std::string_view(name), &NamedKey::name);
        if (found != std::end(namedKeys))
            renumbered_->emplace(key, found->evdevCode);
    }
}

std::optional<std::uint32_t> KeyPositions::evdevCode(std::uint8_t key) const {
    if (key < keyOffset)
        return std::nullopt;
    if (!renumbered_ || key < firstRenumberedKey)
        return key - keyOffset;
    const auto found = renumbered_->find(key);
    return found == renumbered_->end() ? std::nullopt : std::optional(found->second);
}

KeyboardModifiers::KeyboardModifiers(const Symbols& symbols) {
    const auto meta = modifiersSetBy(metaKeys, symbols);
    const auto hyper = modifiersSetBy(hyperKeys, symbols);
    option_ = modifiersSetBy(altKeys, symbols);
    if (option_ == 0)
        option_ = meta;
    // Usual layouts put Meta with Alt and Hyper with Super; on others they stand in for a missing Super.
    command_ = modifiersSetBy(superKeys, symbols);
    if (command_ == 0)
        command_ = hyper != 0 ? hyper : meta;
    command_ = static_cast<std::uint8_t>(command_ & ~option_);
}

std::uint64_t KeyboardModifiers::flags(std::uint8_t modifiers) const {
    ModifierSet set;
    const auto add = [&](std::uint8_t mask, ModifierSet modifier) {
        if ((modifiers & mask) != 0)
            set = set | modifier;
    };
    add(shiftMask, ModifierSet::shift);
    add(controlMask, ModifierSet::control);
    add(option_, ModifierSet::option);
    add(command_, ModifierSet::command);
    return set.rawValue;
}

bool HeldKeys::press(std::uint8_t key, const DownKeys& down) {
    for (std::size_t i = 0; i < isHeld_.size(); ++i)
        if (i != key && (down[i / 8] >> i % 8 & 1) == 0)
            isHeld_[i] = false;
    const bool isNew = !isHeld_[key];
    isHeld_[key] = true;
    return isNew;
}

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

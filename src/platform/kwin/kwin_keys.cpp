#include "platform/kwin/kwin_keys.h"

#include <QChar>
#include <QString>

#include <algorithm>
#include <array>
#include <string_view>
#include <xkbcommon/xkbcommon.h>

namespace tavrin {
namespace {

struct NamedKey {
    std::uint32_t symbol;
    Qt::Key key;
    const char* name;
};

constexpr std::array namedKeys = {
    NamedKey{XKB_KEY_Escape, Qt::Key_Escape, "Esc"},
    NamedKey{XKB_KEY_Tab, Qt::Key_Tab, "Tab"},
    NamedKey{XKB_KEY_BackSpace, Qt::Key_Backspace, "Backspace"},
    NamedKey{XKB_KEY_Return, Qt::Key_Return, "Return"},
    NamedKey{XKB_KEY_KP_Enter, Qt::Key_Enter, "Enter"},
    NamedKey{XKB_KEY_Insert, Qt::Key_Insert, "Ins"},
    NamedKey{XKB_KEY_KP_Insert, Qt::Key_Insert, "Ins"},
    NamedKey{XKB_KEY_Delete, Qt::Key_Delete, "Del"},
    NamedKey{XKB_KEY_KP_Delete, Qt::Key_Delete, "Del"},
    NamedKey{XKB_KEY_Pause, Qt::Key_Pause, "Pause"},
    NamedKey{XKB_KEY_Print, Qt::Key_Print, "Print"},
    NamedKey{XKB_KEY_Home, Qt::Key_Home, "Home"},
    NamedKey{XKB_KEY_KP_Home, Qt::Key_Home, "Home"},
    NamedKey{XKB_KEY_End, Qt::Key_End, "End"},
    NamedKey{XKB_KEY_KP_End, Qt::Key_End, "End"},
    NamedKey{XKB_KEY_Left, Qt::Key_Left, "Left"},
    NamedKey{XKB_KEY_KP_Left, Qt::Key_Left, "Left"},
    NamedKey{XKB_KEY_Up, Qt::Key_Up, "Up"},
    NamedKey{XKB_KEY_KP_Up, Qt::Key_Up, "Up"},
    NamedKey{XKB_KEY_Right, Qt::Key_Right, "Right"},
    NamedKey{XKB_KEY_KP_Right, Qt::Key_Right, "Right"},
    NamedKey{XKB_KEY_Down, Qt::Key_Down, "Down"},
    NamedKey{XKB_KEY_KP_Down, Qt::Key_Down, "Down"},
    NamedKey{XKB_KEY_Prior, Qt::Key_PageUp, "PgUp"},
    NamedKey{XKB_KEY_KP_Prior, Qt::Key_PageUp, "PgUp"},
    NamedKey{XKB_KEY_Next, Qt::Key_PageDown, "PgDown"},
    NamedKey{XKB_KEY_KP_Next, Qt::Key_PageDown, "PgDown"},
    NamedKey{XKB_KEY_KP_Begin, Qt::Key_Clear, "Clear"},
    NamedKey{XKB_KEY_Num_Lock, Qt::Key_NumLock, "NumLock"},
    NamedKey{XKB_KEY_Scroll_Lock, Qt::Key_ScrollLock, "ScrollLock"},
    NamedKey{XKB_KEY_Menu, Qt::Key_Menu, "Menu"},
    NamedKey{XKB_KEY_Help, Qt::Key_Help, "Help"},
    NamedKey{XKB_KEY_space, Qt::Key_Space, "Space"},
    NamedKey{XKB_KEY_XF86AudioLowerVolume, Qt::Key_VolumeDown, "Volume Down"},
    NamedKey{XKB_KEY_XF86AudioRaiseVolume, Qt::Key_VolumeUp, "Volume Up"},
    NamedKey{XKB_KEY_XF86AudioMute, Qt::Key_VolumeMute, "Volume Mute"},
};

constexpr std::array modifiers = {
    std::tuple{ModifierSet::command, Qt::META, "Meta+"},
    std::tuple{ModifierSet::control, Qt::CTRL, "Ctrl+"},
    std::tuple{ModifierSet::option, Qt::ALT, "Alt+"},
    std::tuple{ModifierSet::shift, Qt::SHIFT, "Shift+"},
};

bool isOnKeypad(std::uint32_t position) {
    constexpr std::array others{55U, 96U, 98U, 117U, 121U};
    return (position >= 71 && position <= 83) || std::ranges::find(others, position) != others.end();
}

/// What the key of the keypad gives with Num Lock; 0 when that makes no difference.
std::uint32_t keypadDigit(std::uint32_t position) {
    constexpr std::string_view digits = "789-456+1230";
    const auto digit = position >= 71 && position < 71 + digits.size() ? digits[position - 71] : '\0';
    return digit >= '0' && digit <= '9' ? static_cast<std::uint32_t>(digit) : 0;
}

bool isLatin(std::uint32_t symbol) {
    return symbol <= 0xFF;
}

bool isLetter(std::uint32_t symbol) {
    return QChar::isLetter(xkb_keysym_to_utf32(symbol));
}

/// 0 for a symbol that is no key to Qt.
int qtKey(std::uint32_t symbol) {
    if (symbol >= XKB_KEY_F1 && symbol <= XKB_KEY_F35)
        return Qt::Key_F1 + static_cast<int>(symbol - XKB_KEY_F1);
    if (const auto* named = std::ranges::find(namedKeys, symbol, &NamedKey::symbol); named != namedKeys.end())
        return named->key;
    const auto character = xkb_keysym_to_utf32(symbol);
    return character > 0x20 && character != 0x7F ? static_cast<int>(QChar::toUpper(character)) : 0;
}

/// KWin takes a key that gives no Latin letter for what it gives in another layout, if that is one.
std::size_t latinLayout(const KeyboardMap& map, std::uint32_t position, std::size_t layout) {
    const auto symbol = map.symbol(position, layout);
    if (isLatin(symbol) || !isLetter(symbol))
        return layout;
    for (std::size_t other = 0; other < map.layoutCount(); ++other)
        if (const auto found = map.symbol(position, other); found != 0 && isLatin(found))
            return other;
    return layout;
}

} // namespace

std::vector<int> qtKeys(const KeyCombo& combo, const KeyboardMap& map, std::size_t layout,
                        KeypadKeys keypad) {
    std::vector<int> keys;
    const auto add = [&keys](std::uint32_t symbol, int flags) {
        const int key = qtKey(symbol);
        if (key != 0 && std::ranges::find(keys, key | flags) == keys.end())
            keys.push_back(key | flags);
    };
    int held = 0;
    for (const auto& [modifier, flag, name] : modifiers)
        held |= combo.modifiers.contains(modifier) ? static_cast<int>(flag) : 0;
    for (std::uint32_t position = 0; position < 256; ++position) {
        if (virtualKeyCode(position) != combo.keyCode)
            continue;
        if (isOnKeypad(position)) {
            const int mark = keypad == KeypadKeys::marked ? static_cast<int>(Qt::KeypadModifier) : 0;
            add(keypadDigit(position), held | mark);
            add(map.symbol(position, layout), held | mark);
            continue;
        }
        const auto read = latinLayout(map, position, layout);
        const auto plain = map.symbol(position, read);
        const auto shifted = map.symbol(position, read, KeyboardMap::Shift::isDown);
        // A key that gives another character with Shift is that character, and Shift is used up.
        const bool usesShift = (held & Qt::SHIFT) != 0 && shifted != plain && !isLetter(shifted);
        add(usesShift ? shifted : plain, usesShift ? held & ~Qt::SHIFT : held);
    }
    return keys;
}

std::string keyText(int key) {
    std::string text;
    for (const auto& [modifier, flag, name] : modifiers)
        if ((key & flag) != 0)
            text += name;
    const auto bare = key & ~Qt::KeyboardModifierMask;
    if (bare >= Qt::Key_F1 && bare <= Qt::Key_F35)
        return text + "F" + std::to_string(bare - Qt::Key_F1 + 1);
    if (const auto* named = std::ranges::find(namedKeys, bare, &NamedKey::key); named != namedKeys.end())
        return text + named->name;
    return text + QString::fromUcs4(std::array{static_cast<char32_t>(bare)}.data(), 1).toStdString();
}

} // namespace tavrin

#include "platform/x11/key_positions.h"

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

} // namespace tavrin

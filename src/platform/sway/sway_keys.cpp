#include "platform/sway/sway_keys.h"

#include "platform/i3/i3_tree.h"
#include "records/key_combo.h"

#include <fmt/format.h>

#include <algorithm>
#include <xkbcommon/xkbcommon.h>

namespace tavrin {
namespace {

constexpr auto usedByUser = "The configuration of sway uses this combination.";
constexpr auto notAccepted = "sway does not accept this combination.";

std::vector<std::uint32_t> positions(std::uint16_t keyCode) {
    std::vector<std::uint32_t> result;
    for (std::uint32_t position = 1; position < 256; ++position)
        if (virtualKeyCode(position) == keyCode)
            result.push_back(position);
    return result;
}

/// The combination as sway names it.
std::string binding(const KeyCombo& combo, std::uint32_t position) {
    std::string text;
    const std::pair<ModifierSet, const char*> names[] = {{ModifierSet::control, "Ctrl+"},
                                                         {ModifierSet::option, "Mod1+"},
                                                         {ModifierSet::shift, "Shift+"},
                                                         {ModifierSet::command, "Mod4+"}};
    for (const auto& [modifier, name] : names)
        if (combo.modifiers.contains(modifier))
            text += name;
    return text + std::to_string(position + keyOffset);
}

/// What sway tells when it is pressed; it does nothing else.
std::string command(const KeyCombo& combo) {
    return fmt::format("nop tavrin {} {}", combo.keyCode,
                       (combo.modifiers & ModifierSet::significant).rawValue);
}

} // namespace

SwayKeys::SwayKeys(I3Questions& questions, I3Events& events, WaylandKeyboard& keyboard)
    : questions_(questions), keyboard_(keyboard) {
    watches_.push_back(
        events.observe([this](I3Event event, const std::string& payload) { handle(event, payload); }));
    watches_.push_back(events.observeConnection([this, &events] {
        if (events.isConnected())
            bind();
    }));
    // A symbol of the user's configuration may be on another key now.
    watches_.push_back(keyboard.observeChanges([this] { bind(); }));
}

SwayKeys::~SwayKeys() {
    unbind();
}

void SwayKeys::watch(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed) {
    pressed_ = std::move(pressed);
    if (combos == combos_)
        return;
    unbind();
    combos_ = std::move(combos);
    bind();
}

void SwayKeys::handle(I3Event event, const std::string& payload) {
    if (combos_.empty())
        return;
    if (event == I3Event::workspace && readI3Change(payload) == "reload") {
        bound_.clear();
        bind();
    } else if (event == I3Event::binding) {
        const auto told = readI3Binding(payload);
        for (const auto& combo : combos_)
            if (told == command(combo)) {
                if (const auto pressed = pressed_)
                    pressed(combo);
                return;
            }
    }
}

bool SwayKeys::isUsers(const KeyCombo& combo, const std::vector<SwayUserBinding>& bindings) const {
    using Shift = KeyboardMap::Shift;
    const auto& map = keyboard_.map();
    const auto wanted = combo.modifiers & ModifierSet::significant;
    const ModifierSet unshifted{wanted.rawValue & ~ModifierSet::shift.rawValue};
    const auto gives = [&](std::uint32_t position, std::uint32_t symbol, Shift shift) {
        for (std::size_t layout = 0; map && layout < map->layoutCount(); ++layout)
            if (xkb_keysym_to_lower(map->symbol(position, layout, shift)) == xkb_keysym_to_lower(symbol))
                return true;
        return false;
    };
    for (const auto position : positions(combo.keyCode))
        for (const auto& users : bindings) {
            if (users.position) {
                if (*users.position == position && users.modifiers == wanted)
                    return true;
            } else if (users.modifiers == wanted) {
                if (gives(position, users.symbol, Shift::isUp) ||
                    (wanted != unshifted && gives(position, users.symbol, Shift::isDown)))
                    return true;
            } else if (wanted != unshifted && users.modifiers == unshifted &&
                       gives(position, users.symbol, Shift::isDown)) {
                return true; // such as "Ctrl+exclam" where Shift and 1 give that symbol
            }
        }
    return false;
}

void SwayKeys::bind() {
    unbind();
    std::vector<RefusedKey> refused;
    if (!combos_.empty()) {
        std::vector<SwayUserBinding> users;
        const auto version = questions_.ask(I3Question::version);
        const auto config = version ? questions_.ask(I3Question::config) : version;
        if (config)
            if (const auto text = readI3Config(*config)) {
                const auto facts = readI3Version(*version);
                users = readSwayBindings(*text, facts ? facts->configurationFile : "");
            }
        std::string commands;
        std::vector<const KeyCombo*> asked;
        for (const auto& combo : combos_) {
            if (isUsers(combo, users)) {
                refused.push_back({combo, usedByUser});
                continue;
            }
            for (const auto position : positions(combo.keyCode)) {
                bound_.push_back(binding(combo, position));
                asked.push_back(&combo);
                commands += fmt::format("bindcode --no-repeat {} {}; ", bound_.back(), command(combo));
            }
        }
        const auto answer = commands.empty() ? std::expected<std::string, I3Error>()
                                             : questions_.ask(I3Question::runCommand, commands);
        const auto results = answer ? readI3Results(*answer) : std::vector<bool>();
        for (std::size_t i = 0; i < std::min(results.size(), asked.size()); ++i)
            if (!results[i] && std::ranges::find(refused, *asked[i], &RefusedKey::combo) == refused.end())
                refused.push_back({*asked[i], notAccepted});
    }
    if (refused == refused_)
        return;
    refused_ = std::move(refused);
    refusedChanged_.emit();
}

void SwayKeys::unbind() {
    std::string commands;
    for (const auto& combination : std::exchange(bound_, {}))
        commands += fmt::format("unbindcode --no-repeat {}; ", combination);
    if (!commands.empty())
        questions_.ask(I3Question::runCommand, commands);
}

} // namespace tavrin

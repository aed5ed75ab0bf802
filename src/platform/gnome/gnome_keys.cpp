#include "platform/gnome/gnome_keys.h"

#include <QJsonArray>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace tavrin {
namespace {

constexpr Seconds patience{0.8};
constexpr auto taken = "GNOME or another program uses this combination.";

/// As GNOME writes it, with the number of the key, which there is 8 higher than in the input layer.
QString accelerator(const KeyCombo& combo, std::uint32_t position) {
    QString text;
    const std::pair<ModifierSet, const char*> names[] = {{ModifierSet::control, "<Control>"},
                                                         {ModifierSet::option, "<Alt>"},
                                                         {ModifierSet::shift, "<Shift>"},
                                                         {ModifierSet::command, "<Super>"}};
    for (const auto& [modifier, name] : names)
        if (combo.modifiers.contains(modifier))
            text += QLatin1String(name);
    return text + QStringLiteral("0x%1").arg(position + 8, 0, 16);
}

} // namespace

GnomeKeys::GnomeKeys(GnomeExtension& extension) : extension_(extension) {
    watches_.push_back(extension.observeState([this] { reserve(); }));
    watches_.push_back(extension.observeKeys([this](const QString& name) { pressed(name); }));
}

GnomeKeys::~GnomeKeys() {
    watch({}, {});
}

void GnomeKeys::watch(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed) {
    pressed_ = std::move(pressed);
    if (std::exchange(combos_, std::move(combos)) != combos_)
        reserve();
}

void GnomeKeys::reserve() {
    QStringList names;
    std::map<QString, KeyCombo> wanted;
    for (const auto& combo : combos_)
        for (std::uint32_t position = 1; position < 256; ++position)
            if (const auto name = accelerator(combo, position);
                virtualKeyCode(position) == combo.keyCode && wanted.emplace(name, combo).second)
                names.append(name);
    std::vector<RefusedKey> refused;
    if (!names.empty() || !reserved_.empty()) {
        const auto answer = extension_.ask("WatchKeys", {names}, patience);
        const auto granted = answer ? (*answer)["granted"].toArray() : QJsonArray();
        for (qsizetype i = 0; i < std::min(granted.size(), names.size()); ++i) {
            const auto& combo = wanted.at(names[i]);
            if (!granted[i].toBool() &&
                std::ranges::find(refused, combo, &RefusedKey::combo) == refused.end())
                refused.push_back({combo, taken});
        }
    }
    reserved_ = std::move(wanted);
    if (std::exchange(refused_, refused) != refused)
        refusedChanged_.emit();
}

void GnomeKeys::pressed(const QString& accelerator) {
    const auto found = reserved_.find(accelerator);
    if (found == reserved_.end() || !pressed_)
        return;
    const auto combo = found->second;
    const auto handler = pressed_;
    handler(combo);
}

} // namespace tavrin

#include "support/desktop/wayland_client.h"

#include "support/desktop/wait.h"

#include <QSocketNotifier>

#include <ranges>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace tavrin::desktop {

Token HarnessLoop::watchReadable(int fileDescriptor, std::function<void()> handler) {
    auto* notifier = new QSocketNotifier(fileDescriptor, QSocketNotifier::Read);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier,
                     [handler = std::move(handler)] { handler(); });
    return Token([notifier] {
        notifier->setEnabled(false);
        notifier->deleteLater();
    });
}

bool PlayedKeyboard::pressWith(std::vector<std::uint32_t> modifiers, std::uint32_t symbol) {
    if (!waitUntil([this] { return keyboard_.map().has_value(); }))
        return false;
    modifiers.push_back(symbol);
    std::vector<std::uint32_t> positions;
    for (const auto wanted : modifiers) {
        // A capital is the same key with Shift.
        const bool isCapital = wanted >= 'A' && wanted <= 'Z';
        if (isCapital)
            positions.push_back(*keyboard_.map()->position(XKB_KEY_Shift_L));
        const auto position = keyboard_.map()->position(isCapital ? wanted + 32 : wanted);
        if (!position)
            return false;
        positions.push_back(*position);
    }
    for (const auto position : positions)
        change(position, Change::down);
    for (const auto position : positions | std::views::reverse)
        change(position, Change::up);
    return connection_.roundTrip(Seconds(5));
}

} // namespace tavrin::desktop

#include "platform/qt/desktop_colors.h"

#include <QApplication>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace tavrin {
namespace {

const auto portal = QStringLiteral("org.freedesktop.portal.Desktop");
const auto portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const auto settings = QStringLiteral("org.freedesktop.portal.Settings");
const auto appearance = QStringLiteral("org.freedesktop.appearance");
const auto schemeKey = QStringLiteral("color-scheme");

constexpr QRgb plasmaFallback = 0xffd6d2d0; ///< what Qt's own part for Plasma takes without a theme
constexpr QRgb plainFallback = 0xffefefef;  ///< what it takes without any desktop

struct Colors {
    QRgb window, text, base, alternateBase, button, accent, accentText;
};
constexpr Colors breezeLight{0xeff0f1, 0x232629, 0xffffff, 0xf7f7f7, 0xfcfcfc, 0x3daee9, 0xffffff};
constexpr Colors breezeDark{0x2a2e32, 0xfcfcfc, 0x1b1e20, 0x232629, 0x31363b, 0x3daee9, 0xfcfcfc};

QPalette paletteOf(const Colors& colors) {
    QPalette palette{QColor(colors.button), QColor(colors.window)};
    const auto set = [&](QPalette::ColorRole role, QRgb color) {
        palette.setColor(QPalette::Active, role, QColor(color));
        palette.setColor(QPalette::Inactive, role, QColor(color));
    };
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        set(role, colors.text);
    set(QPalette::Base, colors.base);
    set(QPalette::AlternateBase, colors.alternateBase);
    set(QPalette::ToolTipBase, colors.button);
    set(QPalette::Highlight, colors.accent);
    set(QPalette::HighlightedText, colors.accentText);
    return palette;
}

} // namespace

std::optional<QPalette> betterPalette(const QPalette& found, ColorScheme scheme) {
    const QRgb window = found.color(QPalette::Active, QPalette::Window).rgb();
    if (scheme == ColorScheme::dark && (window == plasmaFallback || window == plainFallback))
        return paletteOf(breezeDark);
    if (window == plasmaFallback)
        return paletteOf(breezeLight);
    return std::nullopt;
}

DesktopColors::DesktopColors(BusLink& sessionBus) : sessionBus_(sessionBus), found_(QApplication::palette()) {
    apply(ColorScheme::noPreference);
    opened_ = sessionBus_.observeOpened([this] { listen(); });
    if (sessionBus_.isOpen())
        listen();
}

void DesktopColors::listen() {
    QDBusConnection bus = sessionBus_.connection();
    bus.connect(portal, portalPath, settings, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QDBusMessage)));
    auto question = QDBusMessage::createMethodCall(portal, portalPath, settings, QStringLiteral("Read"));
    question.setArguments({appearance, schemeKey});
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isValid())
            use(reply.value().variant());
    });
}

void DesktopColors::settingChanged(const QDBusMessage& change) {
    const auto values = change.arguments();
    if (values.size() == 3 && values[0] == appearance && values[1] == schemeKey)
        use(values[2]);
}

void DesktopColors::use(const QVariant& value) {
    // `Read` wraps its answer once more.
    const QVariant inner = value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value;
    const unsigned scheme = inner.toUInt();
    apply(scheme <= 2 ? static_cast<ColorScheme>(scheme) : ColorScheme::noPreference);
}

void DesktopColors::apply(ColorScheme scheme) {
    const auto better = betterPalette(found_, scheme);
    if (!better && !isReplaced_)
        return; // a theme's colours change by themselves
    isReplaced_ = better.has_value();
    QApplication::setPalette(better.value_or(found_));
}

} // namespace tavrin

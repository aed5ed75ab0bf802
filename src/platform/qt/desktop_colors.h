#pragma once

#include "platform/session_bus/bus_link.h"

#include <QDBusMessage>
#include <QObject>
#include <QPalette>

#include <optional>

namespace tavrin {

/// The colour scheme that the user prefers, as the desktop's portal tells it.
enum class ColorScheme { noPreference = 0, dark = 1, light = 2 };

/// Colours that are better than `found`, the toolkit's; absent when those are a theme's own. Qt draws in an
/// old beige on Plasma until a theme for Qt 6 is installed, and in light colours where no theme is at all.
std::optional<QPalette> betterPalette(const QPalette& found, ColorScheme scheme);

/// Gives the program the desktop's colours where Qt does not find them, also when they change.
class DesktopColors final : public QObject {
    Q_OBJECT
public:
    /// The link must outlive this object.
    explicit DesktopColors(BusLink& sessionBus);

private Q_SLOTS:
    void settingChanged(const QDBusMessage& change);

private:
    void listen();
    void use(const QVariant& value);
    void apply(ColorScheme scheme);

    BusLink& sessionBus_;
    const QPalette found_;
    bool isReplaced_ = false;
    Token opened_;
};

} // namespace tavrin

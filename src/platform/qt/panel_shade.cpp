#include "platform/qt/panel_shade.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

#include <initializer_list>

namespace tavrin {
namespace {

const auto portalService = QLatin1String("org.freedesktop.portal.Desktop");
const auto portalPath = QLatin1String("/org/freedesktop/portal/desktop");
const auto settingsInterface = QLatin1String("org.freedesktop.portal.Settings");
const auto appearanceGroup = QLatin1String("org.freedesktop.appearance");
const auto colorSchemeKey = QLatin1String("color-scheme");

const auto xfceService = QLatin1String("org.xfce.Xfconf");
const auto xfcePath = QLatin1String("/org/xfce/Xfconf");
const auto xfcePanel = QLatin1String("xfce4-panel");
const auto xfceDarkMode = QLatin1String("/panels/dark-mode");

bool desktopIsOneOf(std::initializer_list<const char*> desktops) {
    for (const QByteArray& name : qgetenv("XDG_CURRENT_DESKTOP").split(':'))
        for (const char* desktop : desktops)
            if (name.compare(desktop, Qt::CaseInsensitive) == 0)
                return true;
    return false;
}

/// The panel of these desktops is dark, unless themed, whatever the colour scheme of the windows is.
bool desktopHasDarkPanel() {
    return desktopIsOneOf({"GNOME", "Unity", "Pantheon", "X-Cinnamon"});
}

/// 1 prefers dark, 2 prefers light, anything else has no preference.
std::optional<Shade> schemeShade(QVariant value) {
    for (int depth = 0; depth < 2 && value.canConvert<QDBusVariant>(); ++depth)
        value = value.value<QDBusVariant>().variant();
    switch (value.toUInt()) {
    case 1:
        return Shade::dark;
    case 2:
        return Shade::light;
    default:
        return {};
    }
}

} // namespace

PanelShade::PanelShade(std::function<void()> changed) : changed_(std::move(changed)) {
    auto bus = QDBusConnection::sessionBus();
    bus.connect(portalService, portalPath, settingsInterface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QDBusMessage)));
    auto* owners =
        new QDBusServiceWatcher(portalService, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(owners, &QDBusServiceWatcher::serviceRegistered, this, &PanelShade::askPortal);
    if (desktopIsOneOf({"XFCE"})) {
        bus.connect(xfceService, xfcePath, xfceService, QStringLiteral("PropertyChanged"),
                    {xfcePanel, xfceDarkMode}, QString(), this, SLOT(xfcePanelChanged(QDBusMessage)));
        askXfce();
    }
    QCoreApplication::instance()->installEventFilter(this);
    update();
    askPortal();
}

Shade PanelShade::shadeOf(const QColor& color) {
    return qGray(color.rgb()) < 128 ? Shade::dark : Shade::light;
}

bool PanelShade::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange)
        update();
    return QObject::eventFilter(object, event);
}

void PanelShade::settingChanged(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    if (arguments.size() != 3 || arguments[0].toString() != appearanceGroup ||
        arguments[1].toString() != colorSchemeKey)
        return;
    scheme_ = schemeShade(arguments[2]);
    update();
}

void PanelShade::askPortal() {
    auto message =
        QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, QStringLiteral("Read"));
    message.setAutoStartService(false);
    message << QString(appearanceGroup) << QString(colorSchemeKey);
    auto* call = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
        call->deleteLater();
        answered(*call);
    });
}

void PanelShade::answered(QDBusPendingCallWatcher& call) {
    const QDBusPendingReply<QDBusVariant> reply = call;
    if (!reply.isValid())
        return;
    scheme_ = schemeShade(reply.value().variant());
    update();
}

void PanelShade::askXfce() {
    auto message =
        QDBusMessage::createMethodCall(xfceService, xfcePath, xfceService, QStringLiteral("GetProperty"));
    message << QString(xfcePanel) << QString(xfceDarkMode);
    auto* call = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
        call->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *call;
        if (!reply.isValid())
            return;
        hasDarkXfcePanel_ = reply.value().variant().toBool();
        update();
    });
}

void PanelShade::xfcePanelChanged(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    if (arguments.size() != 3)
        return;
    hasDarkXfcePanel_ = arguments[2].value<QDBusVariant>().variant().toBool();
    update();
}

void PanelShade::update() {
    auto shade = scheme_.value_or(shadeOf(QGuiApplication::palette().color(QPalette::Window)));
    if (desktopHasDarkPanel() || hasDarkXfcePanel_)
        shade = Shade::dark;
    if (shade == shade_)
        return;
    shade_ = shade;
    changed_();
}

} // namespace tavrin

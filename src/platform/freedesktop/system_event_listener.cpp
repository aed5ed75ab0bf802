#include "platform/freedesktop/system_event_listener.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

#include <unistd.h>
#include <utility>

namespace tavrin {
namespace {

constexpr QLatin1String logind("org.freedesktop.login1");
constexpr QLatin1String managerPath("/org/freedesktop/login1");
constexpr QLatin1String managerInterface("org.freedesktop.login1.Manager");
constexpr QLatin1String sessionInterface("org.freedesktop.login1.Session");
constexpr QLatin1String userInterface("org.freedesktop.login1.User");
constexpr QLatin1String propertiesInterface("org.freedesktop.DBus.Properties");
constexpr QLatin1String lockedHint("LockedHint");

struct ScreenSaver {
    LockSource source;
    QLatin1String name; ///< of the service and of its interface
};
constexpr ScreenSaver screenSavers[] = {
    {LockSource::freedesktopScreenSaver, QLatin1String("org.freedesktop.ScreenSaver")},
    {LockSource::gnomeScreenSaver, QLatin1String("org.gnome.ScreenSaver")},
    {LockSource::cinnamonScreenSaver, QLatin1String("org.cinnamon.ScreenSaver")},
    {LockSource::mateScreenSaver, QLatin1String("org.mate.ScreenSaver")},
    {LockSource::xfceScreenSaver, QLatin1String("org.xfce.ScreenSaver")},
};

QDBusMessage managerCall(const char* method, const QVariantList& arguments) {
    auto message =
        QDBusMessage::createMethodCall(logind, managerPath, managerInterface, QLatin1String(method));
    message.setArguments(arguments);
    return message;
}

QDBusMessage propertyCall(const QString& path, const QString& interface, const QString& property) {
    auto message = QDBusMessage::createMethodCall(logind, path, propertiesInterface, QStringLiteral("Get"));
    message.setArguments({interface, property});
    return message;
}

QString objectPath(const QVariant& value) {
    return value.canConvert<QDBusObjectPath>() ? value.value<QDBusObjectPath>().path() : QString();
}

} // namespace

SystemEventListener::SystemEventListener(FreedesktopSystemEvents::Configuration configuration,
                                         FreedesktopSystemEvents::Handler handler)
    : configuration_(std::move(configuration)), handler_(std::move(handler)),
      systemBus_(configuration_.buses.system, configuration_.retryInterval,
                 [this](const QDBusConnection& bus) { listenToSystem(bus); }),
      sessionBus_(configuration_.buses.session, configuration_.retryInterval,
                  [this](const QDBusConnection& bus) { listenToSession(bus); }) {
    systemBus_.open();
    sessionBus_.open();
}

// A subscription under a service's name may be made before the service is there, and holds for whoever owns
// the name at the time of a signal.
void SystemEventListener::listenToSystem(QDBusConnection bus) {
    const QString anyPath;
    bus.connect(logind, managerPath, managerInterface, QStringLiteral("PrepareForSleep"), this,
                SLOT(prepareForSleep(bool)));
    bus.connect(logind, anyPath, sessionInterface, QStringLiteral("Lock"), this,
                SLOT(sessionLocked(QDBusMessage)));
    bus.connect(logind, anyPath, sessionInterface, QStringLiteral("Unlock"), this,
                SLOT(sessionUnlocked(QDBusMessage)));
    bus.connect(logind, anyPath, propertiesInterface, QStringLiteral("PropertiesChanged"),
                QStringList{sessionInterface}, QStringLiteral("sa{sv}as"), this,
                SLOT(sessionChanged(QString, QVariantMap, QStringList, QDBusMessage)));

    logindWatcher_ =
        std::make_unique<QDBusServiceWatcher>(logind, bus, QDBusServiceWatcher::WatchForRegistration);
    connect(logindWatcher_.get(), &QDBusServiceWatcher::serviceRegistered, this,
            [this, bus] { findSession(bus); });
    findSession(bus);
}

void SystemEventListener::listenToSession(QDBusConnection bus) {
    for (const auto& saver : screenSavers)
        bus.connect(saver.name, QString(), saver.name, QStringLiteral("ActiveChanged"), this,
                    SLOT(screenSaverChanged(bool, QDBusMessage)));
}

void SystemEventListener::findSession(const QDBusConnection& bus) {
    const auto found = [this](const QVariant& path) { setSession(objectPath(path)); };
    // A process that systemd started for the user is in no session: the one with the display is meant.
    const auto notFound = [this, bus] { findDisplaySession(bus); };
    if (configuration_.sessionID && !configuration_.sessionID->empty())
        ask(bus, managerCall("GetSession", {QString::fromStdString(*configuration_.sessionID)}), found,
            notFound);
    else
        ask(bus, managerCall("GetSessionByPID", {static_cast<uint>(::getpid())}), found, notFound);
}

void SystemEventListener::findDisplaySession(const QDBusConnection& bus) {
    ask(bus, managerCall("GetUser", {static_cast<uint>(::getuid())}), [this, bus](const QVariant& user) {
        if (objectPath(user).isEmpty())
            return;
        ask(bus, propertyCall(objectPath(user), userInterface, QStringLiteral("Display")),
            [this](const QVariant& display) {
                if (!display.canConvert<QDBusArgument>())
                    return;
                const auto structure = display.value<QDBusArgument>();
                if (structure.currentSignature() != QLatin1String("(so)"))
                    return;
                QString id;
                QDBusObjectPath path;
                structure.beginStructure();
                structure >> id >> path;
                structure.endStructure();
                setSession(path.path());
            });
    });
}

void SystemEventListener::setSession(const QString& path) {
    if (!path.isEmpty() && path != QLatin1String("/"))
        sessionPath_ = path;
}

void SystemEventListener::ask(const QDBusConnection& bus, const QDBusMessage& question,
                              std::function<void(const QVariant&)> answered, std::function<void()> failed) {
    auto message = question;
    message.setAutoStartService(false);
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [watcher, answered = std::move(answered), failed = std::move(failed)] {
                watcher->deleteLater();
                const auto answer = watcher->reply();
                if (answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty()) {
                    auto value = answer.arguments().constFirst();
                    if (value.canConvert<QDBusVariant>())
                        value = value.value<QDBusVariant>().variant();
                    answered(value);
                } else if (failed) {
                    failed();
                }
            });
}

void SystemEventListener::prepareForSleep(bool isAboutToSleep) {
    if (!isAboutToSleep)
        handler_(SystemEvent::didWake);
}

void SystemEventListener::sessionLocked(const QDBusMessage& message) {
    if (message.path() == sessionPath_)
        report(LockSource::sessionRequest, true);
}

void SystemEventListener::sessionUnlocked(const QDBusMessage& message) {
    if (message.path() == sessionPath_)
        report(LockSource::sessionRequest, false);
}

void SystemEventListener::sessionChanged(const QString& interface, const QVariantMap& changed,
                                         const QStringList& invalidated, const QDBusMessage& message) {
    Q_UNUSED(invalidated)
    if (interface != sessionInterface || message.path() != sessionPath_)
        return;
    const auto hint = changed.value(lockedHint);
    if (hint.typeId() == QMetaType::Bool)
        report(LockSource::sessionHint, hint.toBool());
}

void SystemEventListener::screenSaverChanged(bool isActive, const QDBusMessage& message) {
    for (const auto& saver : screenSavers)
        if (message.interface() == saver.name)
            report(saver.source, isActive);
}

void SystemEventListener::report(LockSource source, bool isLocked) {
    if (isLocked)
        merger_.locked(source);
    else if (merger_.unlocked(source, std::chrono::steady_clock::now()))
        handler_(SystemEvent::screenIsUnlocked);
}

} // namespace tavrin

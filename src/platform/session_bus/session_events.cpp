#include "platform/session_bus/session_events.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

#include <algorithm>
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

/// How long after the session's begin a start of the program still belongs to it.
constexpr std::chrono::minutes loginTime{1};

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

QDBusMessage propertyCall(const QString& path, const char* method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(logind, path, propertiesInterface, QLatin1String(method));
    message.setArguments(arguments);
    return message;
}

QString objectPath(const QVariant& value) {
    return value.canConvert<QDBusObjectPath>() ? value.value<QDBusObjectPath>().path() : QString();
}

} // namespace

bool UnlockMerger::unlocked(LockSource source, TimePoint now) {
    if (locked_.empty() && expected_.erase(source) > 0)
        return false;
    if (!locked_.empty())
        expected_ = std::exchange(locked_, {});
    expected_.erase(source);
    if (counted_ && now - *counted_ < window)
        return false;
    counted_ = now;
    return true;
}

bool UnlockMerger::isLocked() const {
    return std::ranges::any_of(locked_,
                               [](LockSource source) { return source != LockSource::sessionRequest; });
}

SessionEvents::SessionEvents(BusLink& systemBus, BusLink& sessionBus, std::optional<std::string> sessionID,
                             Handler handler)
    : systemBus_(systemBus), sessionBus_(sessionBus), sessionID_(std::move(sessionID)),
      handler_(std::move(handler)) {
    tokens_.push_back(systemBus_.observeOpened([this] { listenToSystem(); }));
    tokens_.push_back(systemBus_.observeClosed([this] { merger_.forget(LockSource::sessionHint); }));
    tokens_.push_back(sessionBus_.observeOpened([this] { listenToSession(); }));
    tokens_.push_back(sessionBus_.observeClosed([this] {
        for (const auto& saver : screenSavers)
            merger_.forget(saver.source);
    }));
    if (systemBus_.isOpen())
        listenToSystem();
    if (sessionBus_.isOpen())
        listenToSession();
}

// A subscription under a service's name may be made before the service is there, and holds for whoever owns
// the name at the time of a signal.
void SessionEvents::listenToSystem() {
    auto bus = systemBus_.connection();
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
    connect(logindWatcher_.get(), &QDBusServiceWatcher::serviceRegistered, this, &SessionEvents::findSession);
    findSession();
}

void SessionEvents::listenToSession() {
    auto bus = sessionBus_.connection();
    screenSaverWatcher_ = std::make_unique<QDBusServiceWatcher>();
    screenSaverWatcher_->setConnection(bus);
    screenSaverWatcher_->setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(screenSaverWatcher_.get(), &QDBusServiceWatcher::serviceUnregistered, this,
            [this](const QString& name) {
                for (const auto& saver : screenSavers)
                    if (saver.name == name)
                        merger_.forget(saver.source);
            });
    for (const auto& saver : screenSavers) {
        screenSaverWatcher_->addWatchedService(saver.name);
        bus.connect(saver.name, QString(), saver.name, QStringLiteral("ActiveChanged"), this,
                    SLOT(screenSaverChanged(bool, QDBusMessage)));
    }
}

void SessionEvents::findSession() {
    const auto found = [this](const QVariant& path) { setSession(objectPath(path)); };
    // A process that systemd started for the user is in no session: the one with the display is meant.
    const auto notFound = [this] { findDisplaySession(); };
    if (sessionID_ && !sessionID_->empty())
        ask(managerCall("GetSession", {QString::fromStdString(*sessionID_)}), found, notFound);
    else
        ask(managerCall("GetSessionByPID", {static_cast<uint>(::getpid())}), found, notFound);
}

void SessionEvents::findDisplaySession() {
    ask(managerCall("GetUser", {static_cast<uint>(::getuid())}), [this](const QVariant& user) {
        if (objectPath(user).isEmpty())
            return;
        ask(propertyCall(objectPath(user), "Get", {QString(userInterface), QStringLiteral("Display")}),
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

void SessionEvents::setSession(const QString& path) {
    if (path.isEmpty() || path == QLatin1String("/"))
        return;
    sessionPath_ = path;
    ask(propertyCall(path, "GetAll", {QString(sessionInterface)}), [this](const QVariant& properties) {
        if (properties.canConvert<QDBusArgument>() &&
            properties.value<QDBusArgument>().currentSignature() == QLatin1String("a{sv}"))
            readSession(qdbus_cast<QVariantMap>(properties));
    });
}

void SessionEvents::readSession(const QVariantMap& properties) {
    const bool isFirst = !std::exchange(isBeginKnown_, true);
    if (properties.value(lockedHint).toBool())
        return merger_.locked(LockSource::sessionHint);
    const std::chrono::microseconds begin(
        properties.value(QStringLiteral("TimestampMonotonic")).toULongLong());
    const auto age = std::chrono::steady_clock::now().time_since_epoch() - begin;
    if (isFirst && begin.count() > 0 && age < loginTime)
        report(LockSource::sessionBegin, false);
}

void SessionEvents::ask(const QDBusMessage& question, std::function<void(const QVariant&)> answered,
                        std::function<void()> failed) {
    auto message = question;
    message.setAutoStartService(false);
    auto* watcher = new QDBusPendingCallWatcher(systemBus_.connection().asyncCall(message), this);
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

void SessionEvents::prepareForSleep(bool isAboutToSleep) {
    if (!isAboutToSleep)
        handler_(SystemEvent::didWake);
}

void SessionEvents::sessionLocked(const QDBusMessage& message) {
    if (message.path() == sessionPath_)
        report(LockSource::sessionRequest, true);
}

void SessionEvents::sessionUnlocked(const QDBusMessage& message) {
    if (message.path() == sessionPath_)
        report(LockSource::sessionRequest, false);
}

void SessionEvents::sessionChanged(const QString& interface, const QVariantMap& changed,
                                   const QStringList& invalidated, const QDBusMessage& message) {
    Q_UNUSED(invalidated)
    if (interface != sessionInterface || message.path() != sessionPath_)
        return;
    const auto hint = changed.value(lockedHint);
    if (hint.typeId() == QMetaType::Bool)
        report(LockSource::sessionHint, hint.toBool());
}

void SessionEvents::screenSaverChanged(bool isActive, const QDBusMessage& message) {
    for (const auto& saver : screenSavers)
        if (message.interface() == saver.name)
            report(saver.source, isActive);
}

void SessionEvents::report(LockSource source, bool isLocked) {
    if (isLocked)
        merger_.locked(source);
    else if (merger_.unlocked(source, std::chrono::steady_clock::now()))
        handler_(SystemEvent::screenIsUnlocked);
}

} // namespace tavrin

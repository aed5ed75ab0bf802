#include "platform/qt/status_notifier_hosts.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QTimer>

namespace tavrin {
namespace {

/// A registry that does not answer counts as none until it says something.
constexpr int answerTimeInMilliseconds = 2000;

} // namespace

StatusNotifierHosts::StatusNotifierHosts(std::function<void(Presence)> changed)
    : changed_(std::move(changed)) {
    auto bus = QDBusConnection::sessionBus();
    const auto service = QString::fromLatin1(watcherService);
    auto* owners = new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(owners, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] {
        reported_.reset();
        ask();
    });
    for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        bus.connect(service, QString::fromLatin1(watcherPath), service, QString::fromLatin1(signal), this,
                    SLOT(ask()));
    QTimer::singleShot(0, this, &StatusNotifierHosts::ask);
}

void StatusNotifierHosts::ask() {
    if (!QDBusConnection::sessionBus().isConnected()) {
        // Nobody would ever answer.
        report(Presence::absent);
        return;
    }
    const auto question = ++question_;
    auto message = QDBusMessage::createMethodCall(
        QString::fromLatin1(watcherService), QString::fromLatin1(watcherPath),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    message.setAutoStartService(false);
    message << QString::fromLatin1(watcherService) << QStringLiteral("IsStatusNotifierHostRegistered");
    const auto call = QDBusConnection::sessionBus().asyncCall(message, answerTimeInMilliseconds);
    auto* pending = new QDBusPendingCallWatcher(call, this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, question, pending] {
        pending->deleteLater();
        if (question != question_)
            return;
        const QDBusPendingReply<QDBusVariant> reply = *pending;
        const bool isThere = reply.isValid() && reply.value().variant().toBool();
        report(isThere ? Presence::present : Presence::absent);
    });
}

void StatusNotifierHosts::report(Presence presence) {
    if (reported_ == presence)
        return;
    reported_ = presence;
    changed_(presence);
}

} // namespace tavrin

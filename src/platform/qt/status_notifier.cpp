#include "platform/qt/status_notifier.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QTimer>
#include <QtEndian>

#include <limits>
#include <utility>

namespace tavrin {
namespace {

constexpr QLatin1String itemPath("/StatusNotifierItem");
constexpr QLatin1String menuObjectPath("/StatusNotifierMenu");

/// The registry of items, which panels read.
constexpr QLatin1String registryService("org.kde.StatusNotifierWatcher");
constexpr QLatin1String registryPath("/StatusNotifierWatcher");

BusImage busImage(const QIcon& icon, int size) {
    QImage image = icon.pixmap(QSize(size, size), 1.0).toImage().convertToFormat(QImage::Format_ARGB32);
    QByteArray pixels(static_cast<qsizetype>(image.width()) * image.height() * 4, Qt::Uninitialized);
    for (int y = 0; y < image.height(); ++y)
        qToBigEndian<quint32>(image.constScanLine(y), image.width(),
                              pixels.data() + static_cast<qsizetype>(y) * image.width() * 4);
    return {image.width(), image.height(), std::move(pixels)};
}

} // namespace

StatusNotifier::StatusNotifier(BusLink& sessionBus, BusMenu& menu, std::function<void(QPoint)> activated)
    : sessionBus_(sessionBus), menu_(menu), activated_(std::move(activated)) {
    qDBusRegisterMetaType<BusImage>();
    qDBusRegisterMetaType<QList<BusImage>>();
    qDBusRegisterMetaType<BusToolTip>();
}

void StatusNotifier::show(std::function<void(Presence)> changed) {
    if (std::exchange(changed_, std::move(changed)))
        return;
    QTimer::singleShot(0, this, [this] {
        opened_ = sessionBus_.observeOpened([this] { attach(); });
        closed_ = sessionBus_.observeClosed([this] {
            ++question_;
            report(Presence::absent);
        });
        sessionBus_.isOpen() ? attach() : report(Presence::absent);
    });
}

void StatusNotifier::attach() {
    auto bus = sessionBus_.connection();
    constexpr auto exported = QDBusConnection::ExportScriptableSlots |
                              QDBusConnection::ExportScriptableSignals |
                              QDBusConnection::ExportScriptableProperties;
    bus.registerObject(itemPath, this, exported);
    bus.registerObject(menuObjectPath, &menu_, exported);
    registryWatcher_ =
        std::make_unique<QDBusServiceWatcher>(registryService, bus, QDBusServiceWatcher::WatchForOwnerChange);
    connect(registryWatcher_.get(), &QDBusServiceWatcher::serviceOwnerChanged, this, [this] {
        reported_.reset(); // a new registry knows nothing of the item
        ask();
    });
    for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        bus.connect(registryService, registryPath, registryService, QLatin1String(signal), this, SLOT(ask()));
    ask();
}

void StatusNotifier::ask() {
    const auto question = ++question_;
    auto message = QDBusMessage::createMethodCall(registryService, registryPath,
                                                  QStringLiteral("org.freedesktop.DBus.Properties"),
                                                  QStringLiteral("Get"));
    message.setAutoStartService(false);
    message << QString(registryService) << QStringLiteral("IsStatusNotifierHostRegistered");
    // As long as a hung registry says nothing there is nothing to be done: Qt's tray icon would ask it too,
    // and wait for the answer.
    constexpr int forever = std::numeric_limits<int>::max();
    auto* pending = new QDBusPendingCallWatcher(sessionBus_.connection().asyncCall(message, forever), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, question, pending] {
        pending->deleteLater();
        if (question != question_)
            return;
        const QDBusPendingReply<QDBusVariant> reply = *pending;
        const bool isThere = reply.isValid() && reply.value().variant().toBool();
        report(isThere ? Presence::present : Presence::absent);
    });
}

void StatusNotifier::report(Presence presence) {
    if (std::exchange(reported_, presence) == presence)
        return;
    if (presence == Presence::present) {
        auto message = QDBusMessage::createMethodCall(registryService, registryPath, registryService,
                                                      QStringLiteral("RegisterStatusNotifierItem"));
        // Panels take any name; the connection's own needs no permission inside a sandbox.
        message << sessionBus_.connection().baseService();
        sessionBus_.connection().asyncCall(message);
    }
    changed_(presence);
}

void StatusNotifier::setIcon(const QIcon& icon) {
    iconImages_.clear();
    for (const QSize size : icon.availableSizes())
        iconImages_.append(busImage(icon, size.width()));
    Q_EMIT NewIcon();
}

void StatusNotifier::setToolTip(const QString& text) {
    toolTip_ = text;
    Q_EMIT NewToolTip();
}

QDBusObjectPath StatusNotifier::menuPath() const {
    return QDBusObjectPath(QString(menuObjectPath));
}

QDBusArgument& operator<<(QDBusArgument& argument, const BusImage& value) {
    argument.beginStructure();
    argument << value.width << value.height << value.pixels;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, BusImage& value) {
    argument.beginStructure();
    argument >> value.width >> value.height >> value.pixels;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const BusToolTip& value) {
    argument.beginStructure();
    argument << value.iconName << value.iconImages << value.title << value.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, BusToolTip& value) {
    argument.beginStructure();
    argument >> value.iconName >> value.iconImages >> value.title >> value.text;
    argument.endStructure();
    return argument;
}

} // namespace tavrin

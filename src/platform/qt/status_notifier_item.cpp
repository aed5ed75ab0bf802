#include "platform/qt/status_notifier_item.h"

#include "platform/qt/status_notifier_hosts.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QtEndian>

namespace tavrin {
namespace {

constexpr auto itemPath = "/StatusNotifierItem";
constexpr auto menuObjectPath = "/StatusNotifierMenu";

/// The sizes in which panels show status items, at one and at two pixels per point.
constexpr int iconSizes[] = {16, 18, 22, 24, 32, 36, 44, 48, 64};

BusImage busImage(const QIcon& icon, int size) {
    QImage image = icon.pixmap(QSize(size, size), 1.0).toImage().convertToFormat(QImage::Format_ARGB32);
    QByteArray pixels(static_cast<qsizetype>(image.width()) * image.height() * 4, Qt::Uninitialized);
    for (int y = 0; y < image.height(); ++y)
        qToBigEndian<quint32>(image.constScanLine(y), image.width(),
                              pixels.data() + static_cast<qsizetype>(y) * image.width() * 4);
    return {image.width(), image.height(), std::move(pixels)};
}

void registerBusTypes() {
    qDBusRegisterMetaType<BusImage>();
    qDBusRegisterMetaType<QList<BusImage>>();
    qDBusRegisterMetaType<BusToolTip>();
}

} // namespace

StatusNotifierItem::StatusNotifierItem(BusMenu& menu, std::function<void(QPoint)> activated)
    : activated_(std::move(activated)) {
    registerBusTypes();
    auto bus = QDBusConnection::sessionBus();
    constexpr auto exported = QDBusConnection::ExportScriptableSlots |
                              QDBusConnection::ExportScriptableSignals |
                              QDBusConnection::ExportScriptableProperties;
    bus.registerObject(QString::fromLatin1(itemPath), this, exported);
    bus.registerObject(QString::fromLatin1(menuObjectPath), &menu, exported);
    const auto name =
        QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid());
    // Inside a sandbox the usual name may be refused; panels take the connection's own name as well.
    serviceName_ = bus.registerService(name) ? name : bus.baseService();
}

StatusNotifierItem::~StatusNotifierItem() {
    auto bus = QDBusConnection::sessionBus();
    bus.unregisterObject(QString::fromLatin1(menuObjectPath));
    bus.unregisterObject(QString::fromLatin1(itemPath));
    if (serviceName_ != bus.baseService())
        bus.unregisterService(serviceName_);
}

void StatusNotifierItem::registerWithPanels() {
    const auto watcher = QString::fromLatin1(StatusNotifierHosts::watcherService);
    auto message =
        QDBusMessage::createMethodCall(watcher, QString::fromLatin1(StatusNotifierHosts::watcherPath),
                                       watcher, QStringLiteral("RegisterStatusNotifierItem"));
    message << serviceName_;
    QDBusConnection::sessionBus().asyncCall(message);
}

void StatusNotifierItem::setIcon(const QIcon& icon) {
    iconImages_.clear();
    for (const int size : iconSizes)
        iconImages_.append(busImage(icon, size));
    Q_EMIT NewIcon();
}

void StatusNotifierItem::setToolTip(const QString& text) {
    if (text == toolTip_)
        return;
    toolTip_ = text;
    Q_EMIT NewToolTip();
}

QString StatusNotifierItem::id() const {
    return QStringLiteral("org.tavrin.Tavrin");
}

QDBusObjectPath StatusNotifierItem::menuPath() const {
    return QDBusObjectPath(QString::fromLatin1(menuObjectPath));
}

void StatusNotifierItem::Activate(int x, int y) {
    activated_({x, y});
}

void StatusNotifierItem::SecondaryActivate(int x, int y) {
    activated_({x, y});
}

void StatusNotifierItem::ContextMenu(int x, int y) {
    activated_({x, y});
}

void StatusNotifierItem::Scroll(int, const QString&) {}

void StatusNotifierItem::ProvideXdgActivationToken(const QString& token) {
    // Read by the window system integration at the next window that asks for the focus.
    constexpr qsizetype longestToken = 4096;
    if (token.size() <= longestToken)
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
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

#pragma once

#include "platform/qt/bus_menu.h"
#include "platform/session_bus/bus_link.h"

#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QIcon>
#include <QPoint>

#include <functional>
#include <memory>
#include <optional>

namespace tavrin {

/// A picture for the bus, 32 bits per pixel in network byte order: (iiay).
struct BusImage {
    int width = 0;
    int height = 0;
    QByteArray pixels;
};

/// A tool tip for the bus: (sa(iiay)ss).
struct BusToolTip {
    QString iconName;
    QList<BusImage> iconImages;
    QString title;
    QString text;
};

QDBusArgument& operator<<(QDBusArgument& argument, const BusImage& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, BusImage& value);
QDBusArgument& operator<<(QDBusArgument& argument, const BusToolTip& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, BusToolTip& value);

/// The status item as panels on the session bus see it (org.kde.StatusNotifierItem): the panel draws the
/// icon and the menu itself. Qt's own tray icon can do this too, but decides for good at its first use
/// whether there is such a panel, and does not come back after the bus was restarted.
class StatusNotifier final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category SCRIPTABLE true)
    Q_PROPERTY(QString Id READ id SCRIPTABLE true)
    Q_PROPERTY(QString Title READ title SCRIPTABLE true)
    Q_PROPERTY(QString Status READ status SCRIPTABLE true)
    Q_PROPERTY(int WindowId READ windowId SCRIPTABLE true)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu SCRIPTABLE true)
    Q_PROPERTY(QDBusObjectPath Menu READ menuPath SCRIPTABLE true)
    Q_PROPERTY(QString IconName READ noName SCRIPTABLE true)
    Q_PROPERTY(QList<tavrin::BusImage> IconPixmap READ iconImages SCRIPTABLE true)
    Q_PROPERTY(QString IconThemePath READ noName SCRIPTABLE true)
    Q_PROPERTY(QString OverlayIconName READ noName SCRIPTABLE true)
    Q_PROPERTY(QList<tavrin::BusImage> OverlayIconPixmap READ noImages SCRIPTABLE true)
    Q_PROPERTY(QString AttentionIconName READ noName SCRIPTABLE true)
    Q_PROPERTY(QList<tavrin::BusImage> AttentionIconPixmap READ noImages SCRIPTABLE true)
    Q_PROPERTY(QString AttentionMovieName READ noName SCRIPTABLE true)
    Q_PROPERTY(tavrin::BusToolTip ToolTip READ toolTip SCRIPTABLE true)

public:
    /// Whether a panel on the bus shows the item.
    enum class Presence { absent, present };

    /// `activated` is called with a position on the screen by a panel that leaves the menu to the program.
    StatusNotifier(BusLink& sessionBus, BusMenu& menu, std::function<void(QPoint)> activated);

    /// Shows the item wherever there is a panel. `changed` is called with the registry's first answer, soon
    /// when there is no registry, and with every change.
    void show(std::function<void(Presence)> changed);

    void setIcon(const QIcon& icon);
    void setToolTip(const QString& text);

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return QStringLiteral("org.tavrin.Tavrin"); }
    QString title() const { return QStringLiteral("Tavrin"); }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    bool itemIsMenu() const { return true; }
    QDBusObjectPath menuPath() const;
    QString noName() const { return {}; }
    QList<BusImage> iconImages() const { return iconImages_; }
    QList<BusImage> noImages() const { return {}; }
    BusToolTip toolTip() const { return {{}, {}, toolTip_, {}}; }

public Q_SLOTS:
    Q_SCRIPTABLE void Activate(int x, int y) { activated_({x, y}); }
    Q_SCRIPTABLE void SecondaryActivate(int x, int y) { activated_({x, y}); }
    Q_SCRIPTABLE void ContextMenu(int x, int y) { activated_({x, y}); }
    Q_SCRIPTABLE void Scroll(int, const QString&) {}
    /// Not used: a token could only be handed on in the environment, which is not for others to write to.
    Q_SCRIPTABLE void ProvideXdgActivationToken(const QString&) {}

Q_SIGNALS:
    Q_SCRIPTABLE void NewTitle();
    Q_SCRIPTABLE void NewIcon();
    Q_SCRIPTABLE void NewAttentionIcon();
    Q_SCRIPTABLE void NewOverlayIcon();
    Q_SCRIPTABLE void NewToolTip();
    Q_SCRIPTABLE void NewStatus(const QString& status);

private Q_SLOTS:
    void ask();

private:
    void attach();
    void report(Presence presence);

    BusLink& sessionBus_;
    BusMenu& menu_;
    std::function<void(QPoint)> activated_;
    std::function<void(Presence)> changed_;
    std::optional<Presence> reported_;
    unsigned question_ = 0; ///< only the answer to the latest question counts
    QList<BusImage> iconImages_;
    QString toolTip_;
    std::unique_ptr<QDBusServiceWatcher> registryWatcher_;
    Token opened_;
    Token closed_;
};

} // namespace tavrin

Q_DECLARE_METATYPE(tavrin::BusImage)
Q_DECLARE_METATYPE(tavrin::BusToolTip)

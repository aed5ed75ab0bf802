#pragma once

#include "platform/qt/bus_menu.h"

#include <QDBusObjectPath>
#include <QIcon>
#include <QPoint>

#include <functional>
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
/// icon and the menu itself.
class StatusNotifierItem final : public QObject {
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
    /// `activated` is called with a position on the screen by a panel that leaves the menu to the program.
    StatusNotifierItem(BusMenu& menu, std::function<void(QPoint)> activated);
    ~StatusNotifierItem() override;

    /// Asks the panels to show the item; to be called again when their registry was restarted.
    void registerWithPanels();

    void setIcon(const QIcon& icon);
    void setToolTip(const QString& text);

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const;
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
    Q_SCRIPTABLE void Activate(int x, int y);
    Q_SCRIPTABLE void SecondaryActivate(int x, int y);
    Q_SCRIPTABLE void ContextMenu(int x, int y);
    Q_SCRIPTABLE void Scroll(int delta, const QString& orientation);
    Q_SCRIPTABLE void ProvideXdgActivationToken(const QString& token);

Q_SIGNALS:
    Q_SCRIPTABLE void NewTitle();
    Q_SCRIPTABLE void NewIcon();
    Q_SCRIPTABLE void NewAttentionIcon();
    Q_SCRIPTABLE void NewOverlayIcon();
    Q_SCRIPTABLE void NewToolTip();
    Q_SCRIPTABLE void NewStatus(const QString& status);

private:
    std::function<void(QPoint)> activated_;
    QString serviceName_;
    QList<BusImage> iconImages_;
    QString toolTip_;
};

} // namespace tavrin

Q_DECLARE_METATYPE(tavrin::BusImage)
Q_DECLARE_METATYPE(tavrin::BusToolTip)

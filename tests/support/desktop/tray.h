#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QVariant>

#include <optional>
#include <string>
#include <vector>

namespace tavrin::desktop {

/// One line of a menu as the tray shows it.
struct TrayMenuItem {
    int id = 0;
    std::string title;
    bool isSeparator = false;
    bool isEnabled = true;
    std::string shortcut; ///< such as "Control+q"; empty for none
    std::vector<TrayMenuItem> children;
};

/// A menu as text, one line an item, indented by depth: enabled items start with "* ", a submenu ends in "
/// >", a separator is "---", and a shortcut follows in brackets.
std::string describe(const std::vector<TrayMenuItem>& items, int depth = 0);

/// A panel's status area over D-Bus: StatusNotifierWatcher and host in one, showing the item of one program.
/// Appears on the bus with `appear` and goes with `disappear`, as a panel that starts late or restarts.
class Tray : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ registeredItems)
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)

public:
    explicit Tray(QDBusConnection bus);

    bool appear();
    void disappear();

    QStringList registeredItems() const;
    bool isHostRegistered() const { return true; }
    int protocolVersion() const { return 0; }

    /// Waits until a program has put its item here.
    bool waitForItem();
    bool hasItem() const { return !service_.isEmpty(); }
    /// The connection of the program whose item is here.
    const QString& item() const { return service_; }
    std::string toolTip() const;

    /// A property of the item, such as "Status"; invalid when it does not answer.
    QVariant property(const QString& name) const;
    /// What is drawn for the item: its icon's name and a checksum of its pixels.
    std::string picture() const;
    /// How often the item said that its icon changed.
    int iconChanges() const { return iconChanges_; }

    /// Reads the menu as it was last shown, without telling the item of it. Changes of it wake `waitUntil`.
    std::optional<std::vector<TrayMenuItem>> readMenu();
    /// Opens the menu as a panel does and reads all of it; absent when the item does not answer.
    std::optional<std::vector<TrayMenuItem>> openMenu();
    /// Opens the menu and chooses the item at that path of titles. False when there is none, or it is
    /// disabled.
    bool choose(const std::vector<std::string>& path);

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString& item);
    void RegisterStatusNotifierHost(const QString&) { Q_EMIT StatusNotifierHostRegistered(); }

Q_SIGNALS:
    void StatusNotifierItemRegistered(const QString& item);
    void StatusNotifierItemUnregistered(const QString& item);
    void StatusNotifierHostRegistered();

private Q_SLOTS:
    void noteNewIcon() { ++iconChanges_; }
    void noteNewMenu() {} // only its arrival matters: it wakes whoever waits

private:
    std::string readPicture() const;
    QDBusMessage menuCall(const QString& method, const QVariantList& arguments) const;
    void forget(const QString& service);

    mutable QDBusConnection bus_;
    QDBusServiceWatcher departures_;
    QString service_;
    QString path_;
    int iconChanges_ = 0;
};

} // namespace tavrin::desktop

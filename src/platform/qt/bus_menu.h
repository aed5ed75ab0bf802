#pragma once

#include "platform/qt/bus_menu_tree.h"

#include <QObject>

#include <functional>
#include <set>

// Qt has a menu for panels too, but only inside its own tray icon, which decides once per process whether
// there is a panel on the bus and numbers the items anew whenever the menu changes: a click that crosses the
// change would hit something else. So the menu protocol is served here.

namespace tavrin {

/// A menu offered over the session bus (com.canonical.dbusmenu); the panel draws it.
class BusMenu final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version SCRIPTABLE true)
    Q_PROPERTY(QString TextDirection READ textDirection SCRIPTABLE true)
    Q_PROPERTY(QString Status READ status SCRIPTABLE true)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath SCRIPTABLE true)

public:
    /// `willOpen` is called just before a panel shows the menu and may replace it; `chosen` in a later
    /// turn of the event loop than the click.
    BusMenu(std::function<void()> willOpen, std::function<void(const MenuItem&)> chosen);

    void setMenu(const MenuModel& menu);

    uint version() const { return 3; }
    QString textDirection() const;
    QString status() const { return QStringLiteral("normal"); }
    QStringList iconThemePath() const { return {}; }

public Q_SLOTS:
    Q_SCRIPTABLE uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                                tavrin::BusMenuLayout& layout) const;
    Q_SCRIPTABLE QList<tavrin::BusMenuItem> GetGroupProperties(const QList<int>& ids,
                                                               const QStringList& propertyNames) const;
    Q_SCRIPTABLE QDBusVariant GetProperty(int id, const QString& name) const;
    Q_SCRIPTABLE void Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp);
    Q_SCRIPTABLE QList<int> EventGroup(const tavrin::BusMenuEvents& events);
    Q_SCRIPTABLE bool AboutToShow(int id);
    Q_SCRIPTABLE QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

Q_SIGNALS:
    Q_SCRIPTABLE void ItemsPropertiesUpdated(const QList<tavrin::BusMenuItem>& updated,
                                             const QList<tavrin::BusMenuRemovedProperties>& removed);
    Q_SCRIPTABLE void LayoutUpdated(uint revision, int parent);
    Q_SCRIPTABLE void ItemActivationRequested(int id, uint timestamp);

private:
    /// Those of the numbers that are in the menu, each once.
    std::set<int> known(const QList<int>& ids) const;
    void choose(int id);

    std::function<void()> willOpen_;
    std::function<void(const MenuItem&)> chosen_;
    MenuModel menu_;
    BusMenuTree tree_;
    uint revision_ = 1;
    bool wasAnnounced_ = false; ///< the opening was announced before it is reported
};

} // namespace tavrin

#include "platform/qt/bus_menu.h"

#include <QGuiApplication>
#include <QTimer>

namespace tavrin {

BusMenu::BusMenu(std::function<void()> willOpen, std::function<void(const MenuItem&)> chosen)
    : willOpen_(std::move(willOpen)), chosen_(std::move(chosen)) {
    registerBusMenuTypes();
}

void BusMenu::setMenu(const MenuModel& menu) {
    if (menu == menu_)
        return;
    menu_ = menu;
    tree_.replace(menu);
    Q_EMIT LayoutUpdated(++revision_, BusMenuTree::root);
}

QString BusMenu::textDirection() const {
    return QGuiApplication::isRightToLeft() ? QStringLiteral("rtl") : QStringLiteral("ltr");
}

uint BusMenu::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                        BusMenuLayout& layout) const {
    layout = tree_.contains(parentId) ? tree_.layout(parentId, recursionDepth, propertyNames)
                                      : BusMenuLayout{parentId, {}, {}};
    return revision_;
}

QList<BusMenuItem> BusMenu::GetGroupProperties(const QList<int>& ids,
                                               const QStringList& propertyNames) const {
    QList<BusMenuItem> items;
    const auto add = [&](int id) {
        if (tree_.contains(id))
            items.append({id, tree_.properties(id, propertyNames)});
    };
    if (ids.isEmpty()) {
        add(BusMenuTree::root);
        for (const int id : tree_.ids())
            add(id);
    }
    for (const int id : ids)
        add(id);
    return items;
}

QDBusVariant BusMenu::GetProperty(int id, const QString& name) const {
    const auto value = tree_.properties(id, {name}).value(name);
    return QDBusVariant(value.isValid() ? value : QVariant(QString()));
}

void BusMenu::Event(int id, const QString& eventId, const QDBusVariant&, uint) {
    if (eventId == QLatin1String("clicked")) {
        // The panel waits for the answer, and what the item does may take its time.
        QTimer::singleShot(0, this, [this, id] { choose(id); });
    } else if (id == BusMenuTree::root && eventId == QLatin1String("opened")) {
        // Not every panel asks before it shows the menu.
        if (!std::exchange(wasAnnounced_, false))
            willOpen_();
    } else if (id == BusMenuTree::root && eventId == QLatin1String("closed")) {
        wasAnnounced_ = false;
    }
}

QList<int> BusMenu::EventGroup(const QList<BusMenuEvent>& events) {
    QList<int> unknown;
    for (const auto& [id, event, data, timestamp] : events) {
        if (tree_.contains(id))
            Event(id, event, data, timestamp);
        else
            unknown.append(id);
    }
    return unknown;
}

bool BusMenu::AboutToShow(int id) {
    if (id != BusMenuTree::root)
        return false;
    wasAnnounced_ = true;
    const auto before = revision_;
    willOpen_();
    return revision_ != before;
}

QList<int> BusMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
    QList<int> needUpdate;
    for (const int id : ids) {
        if (!tree_.contains(id))
            idErrors.append(id);
        else if (AboutToShow(id))
            needUpdate.append(id);
    }
    return needUpdate;
}

void BusMenu::choose(int id) {
    if (const MenuItem* item = tree_.item(id); item && item->isEnabled && item->submenu.empty())
        chosen_(MenuItem(*item));
}

} // namespace tavrin

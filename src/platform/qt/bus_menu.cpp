#include "platform/qt/bus_menu.h"

#include <QGuiApplication>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace tavrin {
namespace {

/// The properties that a panel asks for; there are fewer kinds than this.
QStringList bounded(const QStringList& names) {
    constexpr qsizetype mostNames = 32;
    return names.first(std::min(names.size(), mostNames));
}

} // namespace

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
    layout = tree_.contains(parentId) ? tree_.layout(parentId, recursionDepth, bounded(propertyNames))
                                      : BusMenuLayout{parentId, {}, {}};
    return revision_;
}

std::set<int> BusMenu::known(const QList<int>& ids) const {
    std::set<int> known;
    for (const int id : ids)
        if (tree_.contains(id))
            known.insert(id);
    return known;
}

QList<BusMenuItem> BusMenu::GetGroupProperties(const QList<int>& ids,
                                               const QStringList& propertyNames) const {
    QList<BusMenuItem> items;
    const auto add = [&, names = bounded(propertyNames)](int id) {
        items.append({id, tree_.properties(id, names)});
    };
    if (ids.isEmpty()) {
        add(BusMenuTree::root);
        for (const int id : tree_.ids())
            add(id);
    }
    // A peer may send any number of numbers; each item is in the answer once.
    for (const int id : known(ids))
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

QList<int> BusMenu::EventGroup(const BusMenuEvents& events) {
    QList<int> unknown;
    for (const auto& [id, event, data, timestamp] : events.events) {
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
    const auto shown = known(ids);
    constexpr qsizetype mostErrors = 64;
    for (const int id : ids)
        if (idErrors.size() < mostErrors && !shown.contains(id))
            idErrors.append(id);
    QList<int> needUpdate;
    for (const int id : shown)
        if (AboutToShow(id))
            needUpdate.append(id);
    return needUpdate;
}

void BusMenu::choose(int id) {
    if (const MenuItem* item = tree_.item(id); item && item->isEnabled && item->submenu.empty())
        chosen_(MenuItem(*item));
}

} // namespace tavrin

#include "platform/qt/status_menu.h"

#include "platform/qt/menu_text.h"

#include <QKeyEvent>
#include <QTimer>

namespace tavrin {

StatusMenu::StatusMenu(std::function<void(const MenuItem&)> chosen)
    : top_(*this), chosen_(std::move(chosen)) {}

StatusMenu::StatusMenu(StatusMenu& parent, const MenuItem& item)
    : QMenu(actionText(item.title), &parent), top_(parent.top_) {
    fill(item.submenu);
}

void StatusMenu::setMenu(const MenuModel& menu) {
    if (menu == items_)
        return;
    // The menu may be open: the pointer or the arrow keys stay on the item of the same name.
    const QString active = activeAction() ? activeAction()->text() : QString();
    clear();
    qDeleteAll(findChildren<QMenu*>(Qt::FindDirectChildrenOnly));
    fill(menu);
    if (!isVisible())
        return;
    for (QAction* action : actions())
        if (action->isEnabled() && !action->isSeparator() && action->text() == active)
            setActiveAction(action);
}

void StatusMenu::fill(const MenuModel& items) {
    items_ = items;
    for (const MenuItem& item : items_) {
        if (item.isSeparator) {
            addSeparator();
            continue;
        }
        // A shortcut of the action would count in the program's other windows too; a text after a tab
        // stands in the column of the shortcuts and does nothing.
        QString text = actionText(item.title);
        if (item.keyEquivalent)
            text += QLatin1Char('\t') + keyEquivalentText(*item.keyEquivalent);
        if (item.submenu.empty()) {
            QAction* action = addAction(text);
            action->setEnabled(item.isEnabled);
            connect(action, &QAction::triggered, this, [this, item] { top_.choose(item); });
        } else {
            addMenu(new StatusMenu(*this, item))->setEnabled(item.isEnabled);
        }
    }
}

void StatusMenu::keyPressEvent(QKeyEvent* event) {
    const bool isPlain = !(event->modifiers() & ~Qt::KeypadModifier);
    if (isPlain && !event->isAutoRepeat() && top_.chooseByKey(event->text()))
        return;
    QMenu::keyPressEvent(event);
}

bool StatusMenu::chooseByKey(const QString& key) {
    if (key.isEmpty())
        return false;
    for (const MenuItem& item : items_) {
        const bool isMeant =
            item.isEnabled && item.keyEquivalent && item.keyEquivalent->modifiers == ModifierSet{} &&
            QString::fromStdString(item.keyEquivalent->key).compare(key, Qt::CaseInsensitive) == 0;
        if (isMeant) {
            const MenuItem copy = item;
            close();
            choose(copy);
            return true;
        }
    }
    return false;
}

void StatusMenu::choose(const MenuItem& item) {
    if (item.action != MenuAction::none)
        QTimer::singleShot(0, this, [this, item] { chosen_(item); });
}

} // namespace tavrin

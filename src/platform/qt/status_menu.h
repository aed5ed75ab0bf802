#pragma once

#include "ports/status_item.h"

#include <QMenu>

#include <functional>

namespace tavrin {

/// A menu model drawn by this program. Letters shown beside the items choose them while the menu is open;
/// shortcuts with modifiers are only shown, since they work without the menu.
class StatusMenu final : public QMenu {
public:
    /// `chosen` is called in a later turn of the event loop than the click, when the menu is gone from the
    /// screen.
    explicit StatusMenu(std::function<void(const MenuItem&)> chosen);

    void setMenu(const MenuModel& menu);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    StatusMenu(StatusMenu& parent, const MenuItem& item);
    void fill(const MenuModel& items);
    bool chooseByKey(const QString& key);
    void choose(const MenuItem& item);

    StatusMenu& top_;
    std::function<void(const MenuItem&)> chosen_;
    MenuModel items_;
};

} // namespace tavrin

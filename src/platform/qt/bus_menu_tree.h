#pragma once

#include "platform/qt/bus_menu_types.h"
#include "ports/status_item.h"

#include <map>
#include <optional>
#include <tuple>
#include <vector>

namespace tavrin {

/// A menu whose items carry numbers, in the form in which it travels over the session bus. An item that
/// stays the same over a replacement keeps its number, and a number never comes back for something else:
/// a click that crosses a replacement on the bus hits what the user saw or nothing.
class BusMenuTree {
public:
    static constexpr int root = 0;

    BusMenuTree() { replace({}); }

    void replace(const MenuModel& menu);

    /// Absent for a number that is not (any more) in the menu.
    const MenuItem* item(int id) const;
    bool contains(int id) const { return id == root || nodes_.contains(id); }

    /// The named properties of an item that differ from their defaults, all of them when `names` is empty.
    QVariantMap properties(int id, const QStringList& names = {}) const;

    /// An item with the levels below it: none for a depth of 0, all for a negative one.
    BusMenuLayout layout(int id, int depth, const QStringList& names = {}) const;

    /// Every item in the order of the menu, without the root.
    std::vector<int> ids() const;

private:
    struct Node {
        MenuItem item; ///< without its submenu
        std::vector<int> children;
    };
    /// What makes an item the same: parent, title, action, object, and which of several alike it is.
    using Identity = std::tuple<int, std::string, bool, MenuAction, std::optional<Uuid>, int>;

    std::vector<int> adopt(int parent, const std::vector<MenuItem>& items,
                           const std::map<Identity, int>& known);
    void collectIds(const std::vector<int>& children, std::vector<int>& ids) const;

    std::map<int, Node> nodes_;
    std::map<Identity, int> identities_;
    std::vector<int> topLevel_;
    int nextId_ = 1;
};

} // namespace tavrin

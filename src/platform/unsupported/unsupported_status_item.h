#pragma once

#include "ports/status_item.h"

namespace tavrin {

/// Shows nothing; every drawing is missing. A real one shows the item as soon as there is a place for it,
/// and asks for a fresh menu just before it opens.
class UnsupportedStatusItem final : public StatusItemSurface {
public:
    bool setTemplateImage(const std::string&) override { return false; }
    void setTitle(const std::string&) override {}
    void setToolTip(const std::string&) override {}
    void setMenu(const MenuModel&) override {}
    void setMenuCallbacks(std::function<void()>,
                          std::function<void(MenuAction, std::optional<Uuid>)>) override {}
    void show() override {}
};

} // namespace tavrin

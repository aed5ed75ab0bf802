#pragma once

#include "ui/save_layout_popover_view.h"

#include <memory>

namespace tavrin {

/// A small window beside the status item.
class PopoverSurface {
public:
    virtual ~PopoverSurface() = default;

    /// Shows `view` beside the status item (at the pointer where the desktop does not tell where that is),
    /// inside one screen, with the focus in its name field. It closes when the user clicks elsewhere. A
    /// popover that is still shown is closed first.
    virtual void show(std::shared_ptr<SaveLayoutPopoverView> view) = 0;

    /// Closes the popover if one is shown.
    virtual void close() = 0;
};

} // namespace tavrin

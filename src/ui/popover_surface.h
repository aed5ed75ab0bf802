#pragma once

#include "ui/save_layout_popover_view.h"

#include <memory>
#include <optional>

namespace tavrin {

/// A small window beside what it belongs to.
class PopoverSurface {
public:
    virtual ~PopoverSurface() = default;

    /// Shows `view` beside a place on the desktop in the toolkit's coordinates; without one beside the status
    /// item, or at the pointer where the desktop does not tell where that is. It stands inside one screen,
    /// with the focus in its name field, and closes when the user clicks elsewhere. A popover that is still
    /// shown is closed first.
    virtual void show(std::shared_ptr<SaveLayoutPopoverView> view, std::optional<Rect> beside) = 0;

    /// Closes the popover if one is shown.
    virtual void close() = 0;
};

} // namespace tavrin

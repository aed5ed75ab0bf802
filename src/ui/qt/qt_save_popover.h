#pragma once

#include "base/geometry.h"
#include "ports/runtime.h"
#include "ui/popover_surface.h"

#include <functional>
#include <memory>
#include <optional>

namespace tavrin {

class SavePopoverWindow;

/// The save-layout popover as a window of its own. It is an ordinary window to the window manager and not a
/// grabbing popup: a grab fails while the panel still holds the one of its menu, and would keep the screen
/// from being locked.
class QtSavePopover final : public PopoverSurface {
public:
    /// `anchor` answers where the status item stands, in Qt's desktop coordinates.
    QtSavePopover(ApplicationHost& host, std::function<std::optional<Rect>()> anchor);
    ~QtSavePopover() override;

    void show(std::shared_ptr<SaveLayoutPopoverView> view, std::optional<Rect> beside) override;
    void close() override;

private:
    void place(const std::optional<Rect>& beside);

    ApplicationHost& host_;
    std::function<std::optional<Rect>()> anchor_;
    std::unique_ptr<SavePopoverWindow> window_;
};

} // namespace tavrin

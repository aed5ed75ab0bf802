#pragma once

#include "platform/x11/x11_window_table.h"
#include "ports/window_list.h"

namespace tavrin {

/// The windows on screen, from the mirror of the client windows.
class X11RawWindowList final : public RawWindowList {
public:
    explicit X11RawWindowList(X11WindowTable& table) : table_(table) {}

    std::optional<std::vector<RawWindowEntry>> onScreenWindows() override;

private:
    X11WindowTable& table_;
};

} // namespace tavrin

#pragma once

#include "base/geometry.h"
#include "ui/user_interface.h"

#include <functional>
#include <optional>

namespace tavrin {

class ApplicationHost;

/// The program's windows made with Qt.
class QtUserInterface final : public UserInterfaceFactory {
public:
    /// `statusItemAnchor` answers where the status item stands, in Qt's desktop coordinates.
    /// Menus of the whole application look like its windows from then on.
    QtUserInterface(ApplicationHost& host, std::function<std::optional<Rect>()> statusItemAnchor);

    std::unique_ptr<PopoverSurface> makePopover() override;
    std::unique_ptr<SettingsWindowSurface>
    makeSettingsWindow(const SettingsCollaborators& collaborators) override;

private:
    ApplicationHost& host_;
    std::function<std::optional<Rect>()> statusItemAnchor_;
};

} // namespace tavrin

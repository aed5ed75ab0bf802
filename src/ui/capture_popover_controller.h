#pragma once

#include "capture/capture_service.h"
#include "ui/current_profile_view_model.h"
#include "ui/popover_surface.h"
#include "ui/profile_list_view_model.h"

#include <memory>
#include <optional>

namespace tavrin {

/// The quick way to save the windows: asks for a name, or captures again under the
/// name of a layout. Failures show nothing and leave nothing behind.
class CapturePopoverController {
public:
    CapturePopoverController(CaptureService& captureService, ProfileStore& profileStore,
                             CurrentProfileViewModel& currentProfileViewModel,
                             ProfileListViewModel& profileListViewModel, PopoverSurface& popover)
        : captureService_(captureService), profileStore_(profileStore),
          currentProfileViewModel_(currentProfileViewModel), profileListViewModel_(profileListViewModel),
          popover_(popover) {}

    /// Makes sure that the connected setup has a profile, then asks for a name: beside the status item, or
    /// beside another place (see `PopoverSurface`).
    void show(std::optional<Rect> beside = {});

    /// Captures again under the name of an existing layout, which that replaces.
    void updateLayout(std::string_view name, const Uuid& profileID);

private:
    void capture(std::string_view name, const Uuid& profileID);

    CaptureService& captureService_;
    ProfileStore& profileStore_;
    CurrentProfileViewModel& currentProfileViewModel_;
    ProfileListViewModel& profileListViewModel_;
    PopoverSurface& popover_;
    std::shared_ptr<CapturePopoverController*> self_ = std::make_shared<CapturePopoverController*>(this);
};

} // namespace tavrin

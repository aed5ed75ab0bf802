#pragma once

#include "base/geometry.h"
#include "base/token.h"
#include "ui/layout_changes.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// The form for saving a layout under a name, without its drawing: what is typed, whether it can be saved,
/// and what the form says about it.
class SaveLayoutPopoverView {
public:
    static constexpr Size contentSize{300, 200};
    static constexpr const char* explanation =
        "Tavrin saves app-aware window positions for the current display setup.";

    /// `existingNames` are the names of the setup's layouts; saving under one of them replaces it.
    SaveLayoutPopoverView(std::vector<std::string> existingNames, std::function<void(std::string)> onSave,
                          std::function<void()> onCancel);

    const std::vector<std::string>& existingNames() const { return existingNames_; }
    const std::string& layoutName() const { return layoutName_; }
    void setLayoutName(std::string name);

    bool canSave() const { return !errorMessage_; }

    /// Why the name cannot be saved; absent when it can.
    const std::optional<std::string>& errorMessage() const { return errorMessage_; }

    /// "Replaces existing layout" when the name belongs to a layout already, ignoring case.
    std::optional<std::string> notice() const;

    /// Hands the typed name over if it can be saved.
    void save();
    void cancel();

private:
    std::vector<std::string> existingNames_;
    std::function<void(std::string)> onSave_;
    std::function<void()> onCancel_;
    std::string layoutName_;
    std::optional<std::string> errorMessage_;
};

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

/// The quick way to save the windows: asks for a name, or captures again under the name of a layout. Failures
/// leave nothing behind; what came of it is told by `LayoutChanges`.
class CapturePopoverController {
public:
    CapturePopoverController(CaptureService& captureService, ProfileStore& profileStore,
                             LayoutChanges& layoutChanges, CurrentProfileViewModel& currentProfileViewModel,
                             ProfileListViewModel& profileListViewModel, PopoverSurface& popover)
        : captureService_(captureService), profileStore_(profileStore), layoutChanges_(layoutChanges),
          currentProfileViewModel_(currentProfileViewModel), profileListViewModel_(profileListViewModel),
          popover_(popover) {}

    /// Makes sure that the connected setup has a profile, then asks for a name: beside the status item, or
    /// beside another place (see `PopoverSurface`).
    void show(std::optional<Rect> beside = {});

    /// Captures again under the name of an existing layout, which that replaces.
    void updateLayout(const Uuid& layoutID) { layoutChanges_.update(layoutID); }

private:
    CaptureService& captureService_;
    ProfileStore& profileStore_;
    LayoutChanges& layoutChanges_;
    CurrentProfileViewModel& currentProfileViewModel_;
    ProfileListViewModel& profileListViewModel_;
    PopoverSurface& popover_;
    std::shared_ptr<CapturePopoverController*> self_ = std::make_shared<CapturePopoverController*>(this);
};

} // namespace tavrin

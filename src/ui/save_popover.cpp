#include "ui/save_popover.h"

#include "base/text.h"
#include "capture/capture_service.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavrin {

SaveLayoutPopoverView::SaveLayoutPopoverView(std::vector<std::string> existingNames,
                                             std::function<void(std::string)> onSave,
                                             std::function<void()> onCancel)
    : existingNames_(std::move(existingNames)), onSave_(std::move(onSave)), onCancel_(std::move(onCancel)) {
    setLayoutName("");
}

void SaveLayoutPopoverView::setLayoutName(std::string name) {
    layoutName_ = std::move(name);
    const auto checked = CaptureService::validatedName(layoutName_);
    if (checked)
        errorMessage_.reset();
    else if (checked.error() == CaptureError::nameTooLong)
        errorMessage_ = fmt::format("Use at most {} characters.", CaptureService::maximumNameLength);
    else
        errorMessage_ = "Enter a name for this layout.";
}

std::optional<std::string> SaveLayoutPopoverView::notice() const {
    const auto name = lowercased(trimmed(layoutName_));
    const bool exists = std::ranges::any_of(
        existingNames_, [&](const std::string& existing) { return lowercased(existing) == name; });
    return exists ? std::optional<std::string>("Replaces existing layout") : std::nullopt;
}

void SaveLayoutPopoverView::save() {
    if (canSave())
        callCopy(onSave_, layoutName_);
}

void SaveLayoutPopoverView::cancel() {
    callCopy(onCancel_);
}

void CapturePopoverController::show(std::optional<Rect> beside) {
    const auto profileID = captureService_.resolveProfileID();
    currentProfileViewModel_.refresh();
    profileListViewModel_.reload();
    if (!profileID)
        return layoutChanges_.reportFailure(profileID.error());
    const auto setups = profileStore_.load();
    if (!setups)
        return layoutChanges_.reportFailure(setups.error());
    std::vector<std::string> existingNames;
    for (const SavedLayout& layout : setups->layoutsOf(*profileID))
        existingNames.push_back(layout.name);
    const std::weak_ptr weak = self_;
    popover_.show(std::make_shared<SaveLayoutPopoverView>(
                      std::move(existingNames),
                      [weak, profileID = *profileID](const std::string& name) {
                          const auto self = weak.lock();
                          if (!self)
                              return;
                          (*self)->layoutChanges_.save(name, profileID);
                          (*self)->popover_.close();
                      },
                      [weak] {
                          if (const auto self = weak.lock())
                              (*self)->popover_.close();
                      }),
                  beside);
}

} // namespace tavrin

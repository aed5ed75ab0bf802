#include "ui/save_layout_popover_view.h"

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
    // Saving may close the popover, and with it this view.
    if (const auto onSave = onSave_; onSave && canSave())
        onSave(std::string(layoutName_));
}

void SaveLayoutPopoverView::cancel() {
    if (const auto onCancel = onCancel_)
        onCancel();
}

} // namespace tavrin

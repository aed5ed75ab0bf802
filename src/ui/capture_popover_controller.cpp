#include "ui/capture_popover_controller.h"

namespace tavrin {

void CapturePopoverController::show(std::optional<Rect> beside) {
    const auto profileID = captureService_.resolveProfileID();
    currentProfileViewModel_.refresh();
    profileListViewModel_.reload();
    if (!profileID)
        return;
    std::vector<std::string> existingNames;
    if (const auto layouts = profileStore_.layouts(*profileID))
        for (const SavedLayout& layout : *layouts)
            existingNames.push_back(layout.name);
    const std::weak_ptr weak = self_;
    popover_.show(std::make_shared<SaveLayoutPopoverView>(
                      std::move(existingNames),
                      [weak, profileID = *profileID](const std::string& name) {
                          const auto self = weak.lock();
                          if (!self)
                              return;
                          (*self)->capture(name, profileID);
                          (*self)->popover_.close();
                      },
                      [weak] {
                          if (const auto self = weak.lock())
                              (*self)->popover_.close();
                      }),
                  beside);
}

void CapturePopoverController::updateLayout(std::string_view name, const Uuid& profileID) {
    capture(name, profileID);
}

void CapturePopoverController::capture(std::string_view name, const Uuid& profileID) {
    static_cast<void>(captureService_.capture(name, SavedLayoutKind::appSpecific, profileID));
    profileListViewModel_.reload();
}

} // namespace tavrin

#pragma once

#include "base/geometry.h"

#include <functional>
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

    /// "Replaces existing layout" when the name belongs to a layout already, whatever its capitals.
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

} // namespace tavrin

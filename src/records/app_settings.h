#pragma once

#include "records/key_combo.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// Everything the user can choose. The member initialisers are the settings of a user who never changed
/// anything.
struct AppSettings {
    bool launchAtLogin = false;
    bool autoRestoreOnConnect = true;
    bool autoRestoreOnDisconnect = true;
    bool autoRestoreOnWake = false;
    bool autoRestoreOnUnlockLogin = false;
    bool clusterExtraAppWindows = true;
    std::optional<KeyCombo> autoDetectShortcut;
    std::map<std::string, KeyCombo> layoutShortcuts; ///< by the text of the layout's identifier
    std::vector<std::string> excludedBundleIDs;      ///< in the order of adding

    bool operator==(const AppSettings&) const = default;

    // A settings file must say what happens automatically; everything else may be missing from it.
    static constexpr auto fields() {
        using Self = AppSettings;
        return std::tuple{defaultedField("launchAtLogin", &Self::launchAtLogin),
                          field("autoRestoreOnConnect", &Self::autoRestoreOnConnect),
                          field("autoRestoreOnDisconnect", &Self::autoRestoreOnDisconnect),
                          field("autoRestoreOnWake", &Self::autoRestoreOnWake),
                          field("autoRestoreOnUnlockLogin", &Self::autoRestoreOnUnlockLogin),
                          defaultedField("clusterExtraAppWindows", &Self::clusterExtraAppWindows),
                          field("autoDetectShortcut", &Self::autoDetectShortcut),
                          defaultedField("layoutShortcuts", &Self::layoutShortcuts),
                          defaultedField("excludedBundleIDs", &Self::excludedBundleIDs)};
    }
};

} // namespace tavrin

#pragma once

#include "ports/settings_providing.h"
#include "ports/wall_clock.h"
#include "storage/app_support_paths.h"
#include "storage/store_migration.h"

namespace tavrin {

/// The owner of the settings file. Each call reads or writes the file anew; a file that cannot be read is
/// never replaced by the defaults.
class SettingsStore : public SettingsProviding {
public:
    SettingsStore(AppSupportPaths paths, WallClock& clock) : paths_(std::move(paths)), clock_(clock) {}

    std::expected<AppSettings, StoreError> load() override;

    /// Fails, and leaves the file as it is, when the file there cannot be read (a newer version's, say).
    std::expected<void, StoreError> save(const AppSettings& settings);

private:
    AppSupportPaths paths_;
    WallClock& clock_;
    StoreMigration migration_{1};
};

} // namespace tavrin

#pragma once

#include "ports/runtime.h"
#include "ports/services.h"
#include "storage/data_file.h"

namespace tavrin {

/// The owner of the settings file. Each call reads or writes the file anew; a file that cannot be read is
/// never replaced by the defaults.
class SettingsStore : public SettingsProviding {
public:
    SettingsStore(const AppSupportPaths& paths, WallClock& clock)
        : clock_(clock), settingsFile_(paths, paths.settingsFile()) {}

    std::expected<AppSettings, StoreError> load() override;

    /// Fails, and leaves the file as it is, when the file there cannot be read (a newer version's, say).
    std::expected<void, StoreError> save(const AppSettings& settings);

private:
    WallClock& clock_;
    DataFile<AppSettings> settingsFile_;
};

} // namespace tavrin

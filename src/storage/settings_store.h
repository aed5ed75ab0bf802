#pragma once

#include "ports/runtime.h"
#include "ports/services.h"
#include "storage/data_file.h"

#include <functional>

namespace tavrin {

/// The owner of the settings file. Each call reads what the file holds now.
class SettingsStore : public SettingsProviding {
public:
    /// What a change does to a file with content that cannot be read (a newer version's, say).
    enum class Unreadable {
        setAside, ///< renames it and starts from the defaults; for what the user chose
        refuse    ///< fails and leaves it as it is; for what the program does by itself
    };

    SettingsStore(const AppSupportPaths& paths, WallClock& clock)
        : paths_(paths), clock_(clock), settingsFile_(paths, paths.settingsFile()) {}

    std::expected<AppSettings, StoreError> load() override;

    /// Loads the settings, lets `change` alter them and saves them; the settings from then on.
    std::expected<AppSettings, StoreError> change(const std::function<void(AppSettings&)>& change,
                                                  Unreadable unreadable = Unreadable::setAside);

    /// Replaces all settings; a file with content that cannot be read is set aside first.
    std::expected<void, StoreError> save(const AppSettings& settings);

    /// The file, when it is there and cannot be read.
    std::vector<UnreadableFile> unreadableFiles() { return tavrin::unreadableFiles(settingsFile_); }

    /// Renames the file to settings.json.unreadable-DATE when it cannot be read; the new path, if any.
    std::expected<std::vector<std::filesystem::path>, StoreError> setAsideUnreadableFiles();

private:
    AppSupportPaths paths_;
    WallClock& clock_;
    DataFile<AppSettings> settingsFile_;
};

} // namespace tavrin

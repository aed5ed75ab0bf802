#include "storage/settings_store.h"

#include "storage/data_file.h"

namespace tavrin {

std::expected<AppSettings, StoreError> SettingsStore::load() {
    auto settings = readDataFile<AppSettings>(paths_, paths_.settingsFile(), migration_);
    if (!settings)
        return std::unexpected(settings.error());
    return std::move(*settings).value_or(AppSettings{});
}

std::expected<void, StoreError> SettingsStore::save(const AppSettings& settings) {
    if (const auto current = load(); !current)
        return std::unexpected(current.error());
    return writeDataFile(paths_, paths_.settingsFile(), migration_, settings, clock_.now());
}

} // namespace tavrin

#include "storage/settings_store.h"

namespace tavrin {

std::expected<AppSettings, StoreError> SettingsStore::load() {
    return settingsFile_.load();
}

std::expected<void, StoreError> SettingsStore::save(const AppSettings& settings) {
    if (const auto current = load(); !current)
        return std::unexpected(current.error());
    return settingsFile_.save(settings, clock_.now());
}

} // namespace tavrin

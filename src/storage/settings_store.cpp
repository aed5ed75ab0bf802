#include "storage/settings_store.h"

namespace tavrin {

std::expected<AppSettings, StoreError> SettingsStore::load() {
    const auto loaded = settingsFile_.load();
    if (!loaded)
        return std::unexpected(loaded.error());
    return **loaded;
}

std::expected<AppSettings, StoreError> SettingsStore::change(const std::function<void(AppSettings&)>& change,
                                                             Unreadable unreadable) {
    const Timestamp now = clock_.now();
    const auto lock = paths_.lock();
    if (!lock)
        return std::unexpected(lock.error());
    auto settings = load();
    if (!settings) {
        // A disk that cannot be read just now may hold good settings.
        const auto* file = std::get_if<UnreadableFile>(&settings.error());
        if (unreadable == Unreadable::refuse || !file ||
            !std::holds_alternative<StoreMigrationError>(file->why))
            return settings;
        if (const auto aside = paths_.setAside(paths_.settingsFile(), now); !aside)
            return std::unexpected(aside.error());
        settings = AppSettings{};
    }
    change(*settings);
    if (const auto saved = settingsFile_.save(*settings, now); !saved)
        return std::unexpected(saved.error());
    return settings;
}

std::expected<void, StoreError> SettingsStore::save(const AppSettings& settings) {
    if (const auto saved = change([&](AppSettings& current) { current = settings; }); !saved)
        return std::unexpected(saved.error());
    return {};
}

std::expected<std::vector<std::filesystem::path>, StoreError> SettingsStore::setAsideUnreadableFiles() {
    return tavrin::setAsideUnreadableFiles(paths_, clock_.now(), settingsFile_);
}

} // namespace tavrin

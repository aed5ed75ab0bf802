#include "marked_store.h"

#include <algorithm>
#include <charconv>

namespace tavrin::faults {
namespace {

constexpr std::size_t repetitions = 60;

std::optional<std::uint64_t> number(std::string_view text) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc{} && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

/// The number that all texts are; absent when they differ.
std::optional<std::uint64_t> commonMark(const std::vector<std::string>& texts, std::size_t count) {
    if (texts.size() != count ||
        std::ranges::adjacent_find(texts, std::ranges::not_equal_to()) != texts.end())
        return std::nullopt;
    return number(texts.front());
}

} // namespace

std::vector<SavedLayoutEntry> markedEntries(std::uint64_t mark) {
    std::vector<SavedLayoutEntry> entries(repetitions);
    for (auto& entry : entries) {
        entry.id = Uuid::random();
        entry.bundleIdentifier = "xterm.XTerm";
        entry.windowTitle = std::to_string(mark);
        entry.frame = {0, 0, 640, 480};
    }
    return entries;
}

MarkedStore::MarkedStore(FileSystem& files, const std::filesystem::path& directory)
    : paths_{files, directory} {
    if (const auto profiles = profiles_.loadProfiles(); profiles && !profiles->empty())
        profileID_ = profiles->front().id;
    if (const auto layouts = profiles_.loadLayouts(); layouts && !layouts->empty())
        layoutID_ = layouts->front().id;
}

bool MarkedStore::create() {
    const auto profile = profiles_.createProfile("0", {});
    if (!profile)
        return false;
    profileID_ = profile->id;
    layoutID_ = Uuid::random();
    const SavedLayout layout{
        .id = layoutID_, .profileID = profileID_, .name = "Work", .entries = markedEntries(0)};
    return profiles_.saveLayout(layout).has_value() && !save(DataFileKind::settings, 0) &&
           !save(DataFileKind::profiles, 0);
}

std::optional<std::string> MarkedStore::save(DataFileKind file, std::uint64_t mark) {
    const auto text = std::to_string(mark);
    std::expected<void, StoreError> saved;
    switch (file) {
    case DataFileKind::settings: {
        AppSettings settings;
        settings.excludedBundleIDs.assign(repetitions, text);
        saved = settings_.save(settings);
        break;
    }
    case DataFileKind::layouts:
        saved = profiles_.replaceLayout(layoutID_, SavedLayoutKind::appSpecific, markedEntries(mark), {});
        break;
    case DataFileKind::profiles:
        saved = profiles_.renameProfile(profileID_, text);
        break;
    }
    return saved ? std::nullopt : std::optional(description(saved.error()));
}

std::expected<Marks, std::string> MarkedStore::read(const std::filesystem::path& directory) {
    PosixFileSystem files;
    MarkedStore store(files, directory);
    const auto profiles = store.profiles_.loadProfiles();
    const auto layouts = store.profiles_.loadLayouts();
    const auto settings = store.settings_.load();
    if (!profiles)
        return std::unexpected("profiles: " + description(profiles.error()));
    if (!layouts)
        return std::unexpected("layouts: " + description(layouts.error()));
    if (!settings)
        return std::unexpected("settings: " + description(settings.error()));
    std::vector<std::string> titles;
    for (const auto& layout : *layouts)
        for (const auto& entry : layout.entries)
            titles.push_back(entry.windowTitle.value_or(""));
    const auto inSettings = commonMark(settings->excludedBundleIDs, repetitions);
    const auto inLayouts = commonMark(titles, repetitions);
    const auto inProfiles = profiles->size() == 1 ? number(profiles->front().name) : std::nullopt;
    if (!inSettings || !inLayouts || !inProfiles)
        return std::unexpected(std::string("a file holds parts of two saves, or nothing"));
    return Marks{*inSettings, *inLayouts, *inProfiles};
}

std::filesystem::path MarkedStore::path(const std::filesystem::path& directory, DataFileKind file) {
    switch (file) {
    case DataFileKind::settings:
        return directory / "settings.json";
    case DataFileKind::layouts:
        return directory / "layouts.json";
    case DataFileKind::profiles:
        return directory / "profiles.json";
    }
    return {};
}

} // namespace tavrin::faults

#include "checks.h"
#include "shortcuts/shortcut_manager.h"

#include <fstream>
#include <functional>
#include <iterator>

namespace tavrin::faults {
namespace {

class NoKeys : public KeyMonitors {
public:
    void watch(std::vector<KeyCombo>, std::function<void(const KeyEvent&)>) override {}
    std::vector<RefusedKey> refusedKeys() override { return {}; }
    Token observeRefusedKeys(std::function<void()>) override { return {}; }
    Token addLocalMonitor(std::function<bool(const KeyEvent&)>) override { return {}; }
};

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void write(const std::filesystem::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

/// The file, or what it was set aside as, still holds `content`. Removes what was set aside.
bool isKept(const std::filesystem::path& path, const std::string& content) {
    bool isKept = contentOf(path) == content;
    std::vector<std::filesystem::path> aside;
    for (const auto& entry : std::filesystem::directory_iterator(path.parent_path()))
        if (entry.path().filename().string().starts_with(path.filename().string() + ".unreadable-"))
            aside.push_back(entry.path());
    for (const auto& file : aside) {
        isKept = isKept || contentOf(file) == content;
        std::filesystem::remove(file);
    }
    return isKept;
}

/// Contents that this program cannot or must not read, made from one that it wrote.
std::vector<std::string> refusedVersionsOf(const std::string& content) {
    auto newer = content;
    const std::string version = "\"schemaVersion\": 1";
    newer.replace(newer.find(version), version.size(), "\"schemaVersion\": 2");
    auto older = content;
    older.replace(older.find(version), version.size(), "\"schemaVersion\": 0");
    return {newer,
            older,
            content.substr(0, content.size() / 2),
            "",
            "{}",
            "null",
            "not a data file",
            std::string(4096, '\0'),
            content + content};
}

struct Operation {
    const char* name;
    std::function<void(MarkedStore&, WallClock&)> run;
};

std::vector<Operation> operations(const Uuid& profileID, const Uuid& layoutID) {
    const SavedLayout layout{.id = Uuid::random(), .profileID = profileID, .name = "New"};
    const KeyCombo combo{15, ModifierSet::control};
    const auto onShortcuts = [](auto change) {
        return [change](MarkedStore& store, WallClock& clock) {
            NoKeys keys;
            ShortcutManager manager(store.settings(), keys, clock);
            change(manager);
        };
    };
    const auto onProfiles = [](auto change) {
        return [change](MarkedStore& store, WallClock&) { static_cast<void>(change(store.profiles())); };
    };
    return {
        {"create setup", onProfiles([](ProfileStore& store) { return store.createProfile("New", {}); })},
        {"rename setup",
         onProfiles([=](ProfileStore& store) { return store.renameProfile(profileID, "New"); })},
        {"learn",
         onProfiles([=](ProfileStore& store) { return store.learnAssociation(profileID, "a", "b"); })},
        {"default",
         onProfiles([=](ProfileStore& store) { return store.setDefaultLayout(profileID, layoutID); })},
        {"save layout", onProfiles([=](ProfileStore& store) { return store.saveLayout(layout); })},
        {"replace layout", onProfiles([=](ProfileStore& store) {
             return store.replaceLayout(layoutID, SavedLayoutKind::generic, {}, {});
         })},
        {"rename layout",
         onProfiles([=](ProfileStore& store) { return store.renameLayout(layoutID, "New"); })},
        {"delete layout", onProfiles([=](ProfileStore& store) { return store.deleteLayout(layoutID); })},
        {"delete setup", onProfiles([=](ProfileStore& store) { return store.deleteProfile(profileID); })},
        {"save settings",
         [](MarkedStore& store, WallClock&) { static_cast<void>(store.settings().save({})); }},
        {"set shortcut",
         onShortcuts([=](ShortcutManager& manager) { manager.setAutoDetectShortcut(combo); })},
        {"layout shortcut",
         onShortcuts([=](ShortcutManager& manager) { manager.setLayoutShortcut(combo, layoutID); })},
        {"prune shortcuts", onShortcuts([](ShortcutManager& manager) { manager.pruneLayoutShortcuts({}); })},
    };
}

} // namespace

Row refusedFiles(const std::filesystem::path& directory) {
    Row row{.fault = "files of other versions, broken or foreign"};
    PosixFileSystem files;
    SystemWallClock clock;
    if (!MarkedStore(files, directory).create()) {
        row.problem = "the files could not be made";
        return row;
    }
    std::array<std::string, 3> sound;
    for (const auto file : allDataFiles)
        sound[static_cast<std::size_t>(file)] = contentOf(MarkedStore::path(directory, file));
    MarkedStore original(files, directory);
    const auto profileID = original.profiles().loadProfiles()->front().id;
    const auto layoutID = original.profiles().loadLayouts()->front().id;
    for (const auto refused : allDataFiles) {
        const auto path = MarkedStore::path(directory, refused);
        for (const auto& content : refusedVersionsOf(sound[static_cast<std::size_t>(refused)])) {
            for (const auto& operation : operations(profileID, layoutID)) {
                for (const auto file : allDataFiles)
                    write(MarkedStore::path(directory, file), sound[static_cast<std::size_t>(file)]);
                write(path, content);
                MarkedStore store(files, directory);
                operation.run(store, clock);
                ++row.rounds;
                ++row.held;
                if (!isKept(path, content))
                    row.problem = fmt::format("{} overwrote {}", operation.name, path.filename().string());
            }
        }
    }
    return row;
}

} // namespace tavrin::faults

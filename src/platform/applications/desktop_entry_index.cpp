#include "platform/applications/desktop_entry_index.h"

#include "base/text.h"
#include "platform/applications/environment.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <sys/stat.h>
#include <utility>

namespace tavrin {
namespace {

namespace fs = std::filesystem;

constexpr int maximumDepth = 8;
constexpr std::size_t maximumEntries = 20'000;
constexpr std::size_t maximumNameLength = 255;
constexpr std::string_view extension = ".desktop";

/// The files and folders of a directory by name; empty when it cannot be read.
std::vector<fs::directory_entry> sortedContent(const fs::path& directory) {
    std::vector<fs::directory_entry> content;
    std::error_code error;
    for (fs::directory_iterator place(directory, error), end; !error && place != end; place.increment(error))
        if (content.size() < maximumEntries)
            content.push_back(*place);
    std::ranges::sort(content, {}, [](const auto& entry) { return entry.path().native(); });
    return content;
}

/// All entries below a directory: a folder's name becomes a part of the IDs in it.
class Reader {
public:
    Reader(const std::vector<std::string>& locales, std::function<void(const fs::path&)> visited)
        : locales_(locales), visited_(std::move(visited)) {}

    /// True when the folder is not known yet.
    bool remember(const fs::path& directory) {
        struct stat status{};
        return ::stat(directory.c_str(), &status) == 0 &&
               folders_.emplace(status.st_dev, status.st_ino).second;
    }

    void read(const fs::path& directory, const std::string& prefix, int depth) {
        visited_(directory);
        for (const auto& place : sortedContent(directory)) {
            const auto name = place.path().filename().string();
            std::error_code error;
            if (place.is_directory(error)) {
                // Links may lead in circles: a folder that was read is not read again through a link.
                const bool isNew = remember(place.path());
                if (depth < maximumDepth && (isNew || !place.is_symlink(error)))
                    read(place.path(), prefix + name + "-", depth + 1);
            } else if (name.ends_with(extension)) {
                add(place.path(), prefix + name);
            }
        }
    }

    std::vector<InstalledApplication> take() {
        std::vector<InstalledApplication> applications;
        for (auto& [id, entry] : found_)
            if (entry.isApplication && !entry.isHidden)
                applications.emplace_back(std::move(entry));
        return applications;
    }

private:
    void add(const fs::path& file, const std::string& id) {
        if (found_.size() >= maximumEntries || id.size() > maximumNameLength || found_.contains(id) ||
            sanitizedUtf8(id, maximumNameLength) != id)
            return;
        const auto bytes = readSmallFile(file, maximumDesktopEntrySize);
        if (!bytes)
            return;
        if (auto entry = parseDesktopEntry(*bytes, locales_)) {
            entry->id = id;
            found_.emplace(id, std::move(*entry));
        }
    }

    const std::vector<std::string>& locales_;
    std::function<void(const fs::path&)> visited_;
    std::map<std::string, DesktopEntry> found_;
    std::set<std::pair<dev_t, ino_t>> folders_;
};

} // namespace

DesktopEntryIndex::DesktopEntryIndex(std::vector<fs::path> directories, std::vector<std::string> locales,
                                     Seconds checkInterval, Clock clock)
    : directories_(std::move(directories)), locales_(std::move(locales)), checkInterval_(checkInterval),
      clock_(std::move(clock)) {}

DesktopEntryIndex::Stamp DesktopEntryIndex::stampOf(const fs::path& directory) {
    struct stat status{};
    if (::stat(directory.c_str(), &status) != 0)
        return {directory};
    constexpr std::int64_t nanoseconds = 1'000'000'000;
    return {directory, status.st_dev, status.st_ino,
            status.st_mtim.tv_sec * nanoseconds + status.st_mtim.tv_nsec};
}

bool DesktopEntryIndex::refresh() {
    const auto now = clock_();
    if (checked_ && now - *checked_ < checkInterval_)
        return false;
    const bool isCurrent = checked_ && std::ranges::all_of(stamps_, [](const Stamp& stamp) {
                               return stamp == stampOf(stamp.path);
                           });
    checked_ = now;
    if (!isCurrent)
        read();
    return true;
}

void DesktopEntryIndex::read() {
    // A directory that changes while it is read, or in the same tick of the file system's clock, must be
    // read again: its stamp is made to differ.
    constexpr std::chrono::nanoseconds settled = std::chrono::milliseconds(100);
    const auto now = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::system_clock::now().time_since_epoch());
    stamps_.clear();
    Reader reader(locales_, [&](const fs::path& directory) {
        auto stamp = stampOf(directory);
        if (stamp.modified > (now - settled).count())
            stamp.modified = 0;
        stamps_.push_back(std::move(stamp));
    });
    for (const auto& directory : directories_)
        reader.remember(directory);
    for (const auto& directory : directories_)
        reader.read(directory, "", 0);
    auto applications = reader.take();
    if (applications != applications_ || generation_ == 0) {
        applications_ = std::move(applications);
        ++generation_;
    }
}

const InstalledApplication* DesktopEntryIndex::find(std::string_view id) const {
    const auto idOf = [](const InstalledApplication& application) -> const std::string& {
        return application.entry.id;
    };
    const auto found = std::ranges::lower_bound(applications_, id, {}, idOf);
    if (found != applications_.end() && found->entry.id == id)
        return &*found;
    const auto folded = foldedApplicationName(id);
    const auto similar = std::ranges::find(applications_, folded, &InstalledApplication::foldedID);
    return similar == applications_.end() ? nullptr : &*similar;
}

std::string foldedApplicationName(std::string_view name) {
    auto folded = lowercased(name);
    std::ranges::replace(folded, ' ', '-');
    return folded;
}

InstalledApplication::InstalledApplication(DesktopEntry description) : entry(std::move(description)) {
    constexpr std::string_view extension = ".desktop";
    foldedID = foldedApplicationName(entry.id);
    foldedStem = foldedID;
    if (foldedStem.ends_with(extension))
        foldedStem.resize(foldedStem.size() - extension.size());
    if (std::ranges::count(foldedStem, '.') >= 2)
        foldedLastPart = foldedStem.substr(foldedStem.rfind('.') + 1);
    foldedStartupClass = foldedApplicationName(entry.startupWMClass);
    const auto words = execWords(entry.exec).value_or(std::vector<std::string>());
    auto name = programOfCommand(words);
    hasArguments = words.size() > 1;
    isFlatpak = !entry.flatpak.empty() || name == "flatpak";
    if (!isInterpreter(name)) {
        foldedProgram = foldedApplicationName(name);
        program = std::move(name);
    }
}

} // namespace tavrin

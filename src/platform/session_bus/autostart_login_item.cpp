#include "platform/session_bus/autostart_login_item.h"

#include "platform/applications/desktop_entry.h"
#include "platform/applications/environment.h"

#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <unistd.h>
#include <utility>

namespace tavrin {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> currentDesktops() {
    return splitList(environmentVariable("XDG_CURRENT_DESKTOP").value_or(""), ':');
}

std::unexpected<PlatformError> failure(const FileError& error) {
    return std::unexpected(PlatformError{error.code, error.description()});
}

/// Whether the session of one of the `current` desktops shows the entry. The first desktop that an entry
/// mentions decides.
bool isShownIn(const DesktopEntry& entry, const std::vector<std::string>& current) {
    const auto contains = [](const std::vector<std::string>& list, const std::string& desktop) {
        return std::ranges::find(list, desktop) != list.end();
    };
    for (const auto& desktop : current) {
        if (contains(entry.onlyShowIn, desktop))
            return true;
        if (contains(entry.notShowIn, desktop))
            return false;
    }
    return entry.onlyShowIn.empty();
}

} // namespace

AutostartLoginItem::AutostartLoginItem(FileSystem& files, fs::path program)
    : files_(files), program_(std::move(program)) {
    for (const auto& folder : QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation))
        systemEntries_.push_back(fs::path(folder.toStdString()) / "autostart" / entryName);
    userEntry_ = systemEntries_.front();
    systemEntries_.erase(systemEntries_.begin());
}

std::optional<fs::path> AutostartLoginItem::systemEntry() {
    const auto found =
        std::ranges::find_if(systemEntries_, [&](const auto& entry) { return files_.exists(entry); });
    return found == systemEntries_.end() ? std::nullopt : std::optional(*found);
}

LoginItemStatus AutostartLoginItem::status() {
    // The user's entry stands for the system's one even when it cannot be read (a link to /dev/null).
    const auto path = files_.exists(userEntry_) ? userEntry_ : systemEntry();
    const auto bytes = path ? files_.read(*path) : std::expected<std::string, FileError>("");
    const auto entry = parseDesktopEntry(bytes.value_or(""));
    if (!entry || !entry->isApplication)
        return LoginItemStatus::notRegistered;
    if (entry->isHidden || !entry->isAutostartEnabled)
        return LoginItemStatus::requiresApproval;

    const auto words = execWords(entry->exec).value_or(std::vector<std::string>());
    const bool starts = !words.empty() && findProgram(words.front()) &&
                        (entry->tryExec.empty() || findProgram(entry->tryExec)) &&
                        isShownIn(*entry, currentDesktops());
    return starts ? LoginItemStatus::enabled : LoginItemStatus::notFound;
}

std::string AutostartLoginItem::currentContent() {
    auto content = files_.read(userEntry_).value_or("");
    if (const auto entry = parseDesktopEntry(content); entry && entry->isApplication)
        return content;
    const auto system = systemEntry();
    content = system ? files_.read(*system).value_or("") : "";
    return parseDesktopEntry(content) ? content : std::string();
}

std::expected<void, PlatformError> AutostartLoginItem::registerItem() {
    if (!program_.is_absolute() || !findProgram(program_.string()))
        return failure({"start at login", program_.string(), ENOENT});
    const auto content = currentContent();
    const auto entry = parseDesktopEntry(content).value_or(DesktopEntry());
    std::vector<DesktopEntryKey> keys{
        {"Type", "Application"},
        {"Name", entry.name.empty() ? "Tavrin" : escapedDesktopEntryText(entry.name)},
        {"Icon", entry.icon.empty() ? "org.tavrin.Tavrin" : escapedDesktopEntryText(entry.icon)},
        {"Exec", quotedExecWord(program_.string())},
        {"TryExec", escapedDesktopEntryText(program_.string())},
        {"Terminal", "false"},
        {"Hidden", std::nullopt},
        {"X-GNOME-Autostart-enabled", "true"},
        {"X-MATE-Autostart-enabled", std::nullopt},
    };
    if (!isShownIn(entry, currentDesktops())) {
        keys.emplace_back("OnlyShowIn", std::nullopt);
        keys.emplace_back("NotShowIn", std::nullopt);
    }
    return writeUserEntry(withDesktopEntryKeys(content, keys));
}

std::expected<void, PlatformError> AutostartLoginItem::unregisterItem() {
    if (systemEntry()) {
        const auto content = currentContent();
        return writeUserEntry(withDesktopEntryKeys(content, {{"Hidden", "true"}}));
    }
    if (const auto removed = files_.remove(userEntry_); !removed && removed.error().code != ENOENT)
        return failure(removed.error());
    return {};
}

std::expected<void, PlatformError> AutostartLoginItem::writeUserEntry(const std::string& content) {
    const auto& entry = userEntry_;
    // Its name does not end like an entry's: a session that starts now does not take it for one.
    const auto temporary = entry.parent_path() / (std::string(entryName) + "." + std::to_string(::getpid()));
    if (const auto made = files_.createDirectories(entry.parent_path()); !made)
        return failure(made.error());
    if (const auto written = files_.writeFlushed(temporary, content); !written)
        return failure(written.error());
    if (const auto placed = files_.rename(temporary, entry); !placed) {
        (void)files_.remove(temporary);
        return failure(placed.error());
    }
    (void)files_.flushDirectory(entry.parent_path()); // the entry is in place whether or not this succeeds
    return {};
}

} // namespace tavrin

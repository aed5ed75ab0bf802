#include "platform/applications/process_facts.h"

#include "base/text.h"
#include "platform/applications/desktop_entry.h"
#include "platform/applications/environment.h"

#include <algorithm>
#include <charconv>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

namespace tavrin {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t maximumProcFile = std::size_t{64} * 1024;
constexpr std::size_t maximumProgramName = 256;

int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

/// Undoes the \x2d escapes of systemd's unit names.
std::string unitUnescaped(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size() && text[i + 1] == 'x' && hexDigit(text[i + 2]) >= 0 &&
            hexDigit(text[i + 3]) >= 0) {
            plain += static_cast<char>(hexDigit(text[i + 2]) * 16 + hexDigit(text[i + 3]));
            i += 3;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

void addUnique(std::vector<std::string>& list, std::string text) {
    if (!text.empty() && std::ranges::find(list, text) == list.end())
        list.push_back(std::move(text));
}

bool isUuid(std::string_view text) {
    return text.size() == 36 &&
           std::ranges::all_of(text, [](char c) { return c == '-' || hexDigit(c) >= 0; });
}

/// "app[-LAUNCHER]-ID-RANDOM.scope", "app[-LAUNCHER]-ID[@RANDOM].service". Dashes in an ID should be escaped,
/// but not every launcher does, so the readings that this leaves open follow the right one.
std::optional<LaunchedApplication> applicationOfAppUnit(std::string_view name, bool isScope) {
    if (const auto at = name.find('@'); at != std::string_view::npos)
        name = name.substr(0, at);
    else if (isScope)
        name = name.substr(0, std::min(name.rfind('-'), name.size()));
    LaunchedApplication application;
    const auto dash = name.find('-');
    if (dash != std::string_view::npos) {
        if (name.substr(0, dash) == "flatpak")
            application.kind = LaunchedApplication::Kind::flatpak;
        addUnique(application.ids, unitUnescaped(name.substr(dash + 1)));
    }
    addUnique(application.ids, unitUnescaped(name));
    if (!isScope && dash != std::string_view::npos)
        addUnique(application.ids, unitUnescaped(name.substr(0, name.rfind('-'))));
    return application.ids.empty() ? std::nullopt : std::optional(application);
}

/// "snap.NAME.APP[-UUID|.UUID].scope", "snap.NAME.APP.service"; the entry is NAME_APP.desktop.
std::optional<LaunchedApplication> applicationOfSnapUnit(std::string_view name) {
    constexpr std::size_t uuidLength = 36;
    if (name.size() > uuidLength + 1 && isUuid(name.substr(name.size() - uuidLength)))
        name.remove_suffix(uuidLength + 1);
    const auto parts = splitList(name, '.');
    if (parts.empty())
        return std::nullopt;
    const auto snap = unitUnescaped(parts[0]);
    LaunchedApplication application{LaunchedApplication::Kind::snap, {}};
    if (parts.size() > 1)
        addUnique(application.ids, snap + "_" + unitUnescaped(parts[1]));
    addUnique(application.ids, snap + "_" + snap);
    return application;
}

std::optional<LaunchedApplication> applicationOfUnit(std::string_view unit) {
    const bool isScope = unit.ends_with(".scope");
    if (!isScope && !unit.ends_with(".service"))
        return std::nullopt;
    unit = unit.substr(0, unit.rfind('.'));
    if (unit.starts_with("app-"))
        return applicationOfAppUnit(unit.substr(4), isScope);
    if (unit.starts_with("snap."))
        return applicationOfSnapUnit(unit.substr(5));
    // Started by the message bus: "dbus-:1.2-org.gnome.Nautilus@0.service".
    if (unit.starts_with("dbus-:")) {
        const auto dash = unit.find('-', 6);
        if (dash != std::string_view::npos)
            return LaunchedApplication{LaunchedApplication::Kind::desktop,
                                       {unitUnescaped(unit.substr(dash + 1, unit.find('@') - dash - 1))}};
    }
    return std::nullopt;
}

fs::path processDirectory(const fs::path& procRoot, ProcessID pid) {
    return procRoot / std::to_string(pid);
}

std::string cgroupFile(const fs::path& directory) {
    return readSmallFile(directory / "cgroup", maximumProcFile).value_or("");
}

std::string baseName(std::string_view path) {
    return sanitizedUtf8(path.substr(path.rfind('/') + 1), maximumProgramName);
}

/// The name of the file that the process executes.
std::string executableName(const fs::path& directory) {
    std::error_code error;
    auto target = fs::read_symlink(directory / "exe", error).string();
    constexpr std::string_view deleted = " (deleted)"; // after an update
    if (target.ends_with(deleted))
        target.resize(target.size() - deleted.size());
    return baseName(target);
}

std::vector<std::string> ownPrograms(const fs::path& directory) {
    std::vector<std::string> programs;
    const auto add = [&](std::string name) {
        if (!isInterpreter(name))
            addUnique(programs, std::move(name));
    };
    const auto words = splitList(readSmallFile(directory / "cmdline", maximumProcFile).value_or(""), '\0');
    if (!words.empty()) {
        auto called = baseName(words.front());
        if (called.starts_with('-')) // a login shell
            called.erase(0, 1);
        if (isInterpreter(called)) {
            const auto script = std::find_if(words.begin() + 1, words.end(),
                                             [](const auto& word) { return !word.starts_with('-'); });
            if (script != words.end())
                add(baseName(*script));
        }
        add(std::move(called));
    }
    add(executableName(directory));
    return programs;
}

std::optional<std::string> flatpakApplication(const fs::path& directory) {
    const auto info = readSmallFile(directory / "root/.flatpak-info", maximumProcFile);
    bool isInGroup = false;
    for (const auto& line : splitList(info.value_or(""), '\n')) {
        if (line.starts_with('['))
            isInGroup = line == "[Application]";
        else if (isInGroup && line.starts_with("name="))
            return sanitizedUtf8(line.substr(5), maximumProgramName);
    }
    return std::nullopt;
}

/// The fields of a process's stat file behind its name, which may hold spaces and brackets itself.
std::vector<std::string> statFields(const fs::path& directory) {
    const auto stat = readSmallFile(directory / "stat", maximumProcFile).value_or("");
    const auto end = stat.rfind(')');
    return end == std::string::npos ? std::vector<std::string>() : splitList(stat.substr(end + 1), ' ');
}

template <class Number>
std::optional<Number> number(const std::vector<std::string>& fields, std::size_t index) {
    Number value{};
    if (index >= fields.size())
        return std::nullopt;
    const auto& text = fields[index];
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() ? std::optional(value) : std::nullopt;
}

std::vector<std::string> parentPrograms(const fs::path& procRoot, ProcessID pid, const std::string& cgroup) {
    constexpr int maximumParents = 16;
    constexpr std::size_t parentField = 1;
    std::vector<std::string> programs;
    for (int i = 0; i < maximumParents; ++i) {
        const auto parent = number<ProcessID>(statFields(processDirectory(procRoot, pid)), parentField);
        if (!parent || *parent <= 1)
            break;
        const auto directory = processDirectory(procRoot, *parent);
        if (cgroupFile(directory) != cgroup)
            break;
        addUnique(programs, executableName(directory));
        pid = *parent;
    }
    return programs;
}

} // namespace

std::optional<LaunchedApplication> launchedApplication(std::string_view cgroupFile) {
    for (const auto& line : splitList(cgroupFile, '\n')) {
        // Of the older hierarchies only systemd's own has its units.
        if (!line.starts_with("0::") && line.find(":name=systemd:") == std::string::npos)
            continue;
        const auto units = splitList(sanitizedUtf8(line, maximumProcFile), '/');
        // The innermost unit says most; terminals give their tabs units without an application.
        for (auto unit = units.rbegin(); unit != units.rend(); ++unit)
            if (auto application = applicationOfUnit(*unit))
                return application;
    }
    return std::nullopt;
}

ProcessFacts processFacts(const fs::path& procRoot, ProcessID pid) {
    const auto directory = processDirectory(procRoot, pid);
    const auto cgroup = cgroupFile(directory);
    ProcessFacts facts{launchedApplication(cgroup), ownPrograms(directory), {}};
    if (auto flatpak = flatpakApplication(directory))
        facts.launched = LaunchedApplication{LaunchedApplication::Kind::flatpak, {*flatpak}};
    if (facts.launched)
        facts.parentPrograms = parentPrograms(procRoot, pid, cgroup);
    return facts;
}

std::optional<ProcessFacts> ProcessFactsReader::facts(ProcessID pid) const {
    struct Answer {
        std::mutex mutex;
        std::condition_variable arrived;
        std::optional<ProcessFacts> facts;
    };
    if (*waiting_ >= maximumWaiting)
        return std::nullopt;
    ++*waiting_;
    const auto answer = std::make_shared<Answer>();
    try {
        std::thread([read = read_, waiting = waiting_, answer, pid] {
            auto facts = read(pid);
            --*waiting;
            const std::lock_guard lock(answer->mutex);
            answer->facts = std::move(facts);
            answer->arrived.notify_one();
        }).detach();
    } catch (const std::system_error&) { // the system has no more threads
        --*waiting_;
        return std::nullopt;
    }
    std::unique_lock lock(answer->mutex);
    answer->arrived.wait_for(lock, patience, [&] { return answer->facts.has_value(); });
    return std::move(answer->facts);
}

std::optional<std::uint64_t> processStartTime(const fs::path& procRoot, ProcessID pid) {
    constexpr std::size_t startField = 19;
    return number<std::uint64_t>(statFields(processDirectory(procRoot, pid)), startField);
}

} // namespace tavrin

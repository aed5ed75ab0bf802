#include "platform/applications/application_matcher.h"

#include <algorithm>
#include <array>
#include <functional>
#include <tuple>

namespace tavrin {
namespace {

constexpr std::string_view extension = ".desktop";

std::string withExtension(std::string id) {
    if (!id.ends_with(extension))
        id += extension;
    return id;
}

/// The window class as it is compared; empty parts match nothing.
struct WindowClass {
    std::string instance;
    std::string name;
    std::string foldedInstance;
    std::string foldedName;

    explicit WindowClass(const ApplicationClues& clues)
        : instance(clues.instanceName.value_or("")), name(clues.className.value_or("")),
          foldedInstance(foldedApplicationName(instance)), foldedName(foldedApplicationName(name)) {}
};

/// How well an application fits a window class, smaller is better; absent when it does not.
std::optional<int> fit(const InstalledApplication& application, const WindowClass& window) {
    int rank = 0;
    const auto matches = [&rank](const std::string& text, const std::string& instance,
                                 const std::string& name) {
        rank += 2;
        if (text.empty() || (text != instance && text != name))
            return false;
        rank -= text == instance ? 1 : 0;
        return true;
    };
    const auto matchesFolded = [&](const std::string& text) {
        return matches(text, window.foldedInstance, window.foldedName);
    };
    if (matches(application.entry.startupWMClass, window.instance, window.name) ||
        matchesFolded(application.foldedStartupClass) || matchesFolded(application.foldedStem) ||
        matchesFolded(application.foldedLastPart))
        return rank;
    // In a terminal, the window is the terminal's.
    if (application.entry.runsInTerminal)
        return std::nullopt;
    // An entry that announces windows of another class counts only when nothing else fits.
    rank += application.foldedStartupClass.empty() ? 0 : 2;
    return matchesFolded(application.foldedProgram) ? std::optional(rank) : std::nullopt;
}

bool startsOneOf(const InstalledApplication& application, const std::vector<std::string>& programs) {
    return !application.program.empty() && std::ranges::find(programs, application.program) != programs.end();
}

bool startsOtherApplications(const DesktopEntry& entry) {
    static constexpr std::array kinds{"TerminalEmulator", "FileManager", "IDE"};
    return std::ranges::any_of(kinds, [&](const char* kind) {
        return std::ranges::find(entry.categories, kind) != entry.categories.end();
    });
}

class Matcher {
public:
    Matcher(const DesktopEntryIndex& index, const ApplicationClues& clues, const ProcessFacts& facts)
        : index_(index), clues_(clues), facts_(facts), window_(clues) {}

    const InstalledApplication* match() const {
        if (const auto* declared = declaredApplication())
            return declared;
        if (const auto* flatpak = flatpakApplication())
            return flatpak;
        const auto* launched = launchedApplication();
        if (launched != nullptr && fit(*launched, window_))
            return launched;
        const auto fitsWindow = [this](const auto& application) { return fit(application, window_); };
        if (const auto* fitting = best(fitsWindow))
            return fitting;
        if (const auto* program = applicationOfProgram(launched))
            return program;
        if (launched != nullptr && !startsOtherApplications(launched->entry) &&
            !startsOneOf(*launched, facts_.parentPrograms))
            return launched;
        return nullptr;
    }

private:
    using Rank = std::function<std::optional<int>(const InstalledApplication&)>;
    using Condition = std::function<bool(const InstalledApplication&)>;

    const InstalledApplication* declaredApplication() const {
        if (!clues_.applicationID)
            return nullptr;
        // Some declare the path of the entry.
        return index_.find(withExtension(clues_.applicationID->substr(clues_.applicationID->rfind('/') + 1)));
    }

    const InstalledApplication* flatpakApplication() const {
        if (!isLaunchedAs(LaunchedApplication::Kind::flatpak))
            return nullptr;
        const auto& id = facts_.launched->ids.front();
        const auto isOfFlatpak = [&](const InstalledApplication& application) {
            return application.entry.flatpak == id || application.entry.id.starts_with(id + ".");
        };
        const auto fitsWindow = [&](const InstalledApplication& application) {
            return isOfFlatpak(application) ? fit(application, window_) : std::nullopt;
        };
        if (const auto* fitting = best(fitsWindow))
            return fitting;
        const auto* main = index_.find(withExtension(id));
        return main != nullptr ? main : bestOf(isOfFlatpak);
    }

    const InstalledApplication* launchedApplication() const {
        if (!facts_.launched || isLaunchedAs(LaunchedApplication::Kind::flatpak))
            return nullptr;
        for (const auto& id : facts_.launched->ids)
            if (const auto* application = index_.find(withExtension(id)))
                return application;
        if (!isLaunchedAs(LaunchedApplication::Kind::snap))
            return nullptr;
        const auto& id = facts_.launched->ids.front();
        const auto snap = id.substr(0, id.rfind('_'));
        return bestOf([&](const auto& application) { return application.entry.snap == snap; });
    }

    const InstalledApplication* applicationOfProgram(const InstalledApplication* launched) const {
        const auto rank = [this](const InstalledApplication& application) {
            const bool isProgram =
                !application.entry.runsInTerminal && startsOneOf(application, facts_.programs);
            // As above, an entry for other windows counts only when there is no better one.
            const int announcesOthers = application.foldedStartupClass.empty() ? 0 : 1;
            return isProgram ? std::optional(announcesOthers) : std::nullopt;
        };
        return launched != nullptr && rank(*launched) ? launched : best(rank);
    }

    bool isLaunchedAs(LaunchedApplication::Kind kind) const {
        return facts_.launched && facts_.launched->kind == kind && !facts_.launched->ids.empty();
    }

    /// The application with the smallest rank; null when none has one.
    const InstalledApplication* best(const Rank& rankOf) const {
        const InstalledApplication* best = nullptr;
        std::tuple<int, bool, bool, bool, bool> bestKey;
        const bool isInFlatpak = isLaunchedAs(LaunchedApplication::Kind::flatpak);
        for (const auto& application : index_.applications()) {
            const auto rank = rankOf(application);
            if (!rank)
                continue;
            const std::tuple key(*rank, application.isFlatpak && !isInFlatpak,
                                 !startsOneOf(application, facts_.programs), application.entry.isNoDisplay,
                                 application.hasArguments);
            if (best == nullptr || key < bestKey) {
                best = &application;
                bestKey = key;
            }
        }
        return best;
    }

    const InstalledApplication* bestOf(const Condition& isCandidate) const {
        return best([&](const auto& application) {
            return isCandidate(application) ? std::optional(0) : std::nullopt;
        });
    }

    const DesktopEntryIndex& index_;
    const ApplicationClues& clues_;
    const ProcessFacts& facts_;
    WindowClass window_;
};

} // namespace

const InstalledApplication* matchApplication(const DesktopEntryIndex& index, const ApplicationClues& clues,
                                             const ProcessFacts& facts) {
    return Matcher(index, clues, facts).match();
}

} // namespace tavrin

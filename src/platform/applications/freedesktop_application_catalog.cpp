#include "platform/applications/freedesktop_application_catalog.h"

#include "base/text.h"
#include "platform/applications/application_matcher.h"
#include "platform/applications/environment.h"

#include <QStandardPaths>

#include <algorithm>
#include <utility>

namespace tavrin {
namespace {

constexpr std::size_t maximumClueLength = 256;
constexpr std::size_t maximumAnswers = 4096;

std::optional<std::string> clean(const std::optional<std::string>& clue) {
    if (!clue)
        return std::nullopt;
    auto text = trimmed(sanitizedUtf8(*clue, maximumClueLength));
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

std::optional<std::string> presentText(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional(text);
}

std::vector<std::filesystem::path> applicationFolders() {
    std::vector<std::filesystem::path> folders;
    for (const auto& folder : QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation))
        folders.emplace_back(folder.toStdString());
    return folders;
}

/// The identity of an application that is not installed.
ApplicationIdentity identityByClass(const ApplicationClues& clues, const ProcessFacts& facts) {
    ApplicationIdentity identity;
    if (clues.instanceName && clues.className)
        identity.bundleIdentifier = *clues.instanceName + "." + *clues.className;
    for (const auto& text : {clues.className, clues.instanceName, clues.applicationID,
                             facts.programs.empty() ? std::nullopt : std::optional(facts.programs.front())}) {
        if (!identity.bundleIdentifier)
            identity.bundleIdentifier = text;
        if (!identity.name)
            identity.name = text;
    }
    return identity;
}

} // namespace

FreedesktopApplicationCatalog::FreedesktopApplicationCatalog()
    : FreedesktopApplicationCatalog(DesktopEntryIndex(applicationFolders(), messageLocales()), "/proc") {}

FreedesktopApplicationCatalog::FreedesktopApplicationCatalog(DesktopEntryIndex index,
                                                             std::filesystem::path procRoot)
    : FreedesktopApplicationCatalog(std::move(index), procRoot,
                                    [procRoot](ProcessID pid) { return processFacts(procRoot, pid); }) {}

FreedesktopApplicationCatalog::FreedesktopApplicationCatalog(DesktopEntryIndex index,
                                                             std::filesystem::path procRoot,
                                                             ProcessFactsReader::Read readFacts)
    : index_(std::move(index)), procRoot_(std::move(procRoot)), factsReader_(std::move(readFacts)) {}

void FreedesktopApplicationCatalog::refresh() {
    if (index_.refresh())
        ++round_;
    if (index_.generation() == answersGeneration_ && answers_.size() < maximumAnswers)
        return;
    answers_.clear();
    answersGeneration_ = index_.generation();
}

ApplicationIdentity FreedesktopApplicationCatalog::identify(const ApplicationClues& clues) {
    refresh();
    ApplicationClues cleaned{clues.pid, clean(clues.applicationID), clean(clues.instanceName),
                             clean(clues.className)};
    const auto known = answers_.find(cleaned);
    if (known != answers_.end() && known->second.round == round_)
        return known->second.identity;

    const auto startTime = clues.pid ? processStartTime(procRoot_, *clues.pid).value_or(0) : 0;
    if (known != answers_.end() && known->second.processStartTime == startTime) {
        known->second.round = round_;
        return known->second.identity;
    }
    const auto facts = clues.pid ? factsReader_.facts(*clues.pid) : ProcessFacts();
    auto identity = find(cleaned, facts.value_or(ProcessFacts()));
    answers_.insert_or_assign(std::move(cleaned), Answer{identity, facts ? startTime : unknown, round_});
    return identity;
}

ApplicationIdentity FreedesktopApplicationCatalog::find(const ApplicationClues& clues,
                                                        const ProcessFacts& facts) const {
    auto identity = identityByClass(clues, facts);
    if (const auto* application = matchApplication(index_, clues, facts)) {
        const auto& entry = application->entry;
        identity.bundleIdentifier = entry.id;
        if (!entry.name.empty())
            identity.name = entry.name;
        else if (!identity.name)
            identity.name = entry.id;
        identity.iconName = presentText(entry.icon);
    }
    return identity;
}

bool FreedesktopApplicationCatalog::canOpenPages() {
    refresh();
    return std::ranges::any_of(index_.applications(),
                               [](const auto& application) { return application.entry.opensPages; });
}

ApplicationIdentity FreedesktopApplicationCatalog::installedApplication(const std::string& bundleIdentifier) {
    refresh();
    ApplicationIdentity identity{.bundleIdentifier = bundleIdentifier, .name = {}, .iconName = {}};
    if (const auto* application = index_.find(bundleIdentifier)) {
        identity.name = presentText(application->entry.name);
        identity.iconName = presentText(application->entry.icon);
    }
    return identity;
}

} // namespace tavrin

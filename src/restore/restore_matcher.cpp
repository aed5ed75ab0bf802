#include "restore/restore_matcher.h"

#include "base/text.h"
#include "placement/window_placement_normalizer.h"
#include "placement/window_placement_translator.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <string>

namespace tavrin {
namespace {

/// A possible pairing; positions count in the lists the candidates were made from. Lower scores are better.
struct Candidate {
    std::size_t entry = 0;
    std::size_t window = 0;
    double score = 0;
};

struct Assignment {
    std::size_t entry = 0;
    std::size_t window = 0;
};

/// Takes the best candidates first; whatever is taken once is not taken again. Ties keep their order.
std::vector<Assignment> assign(std::vector<Candidate> candidates, std::size_t entryCount,
                               std::size_t windowCount) {
    std::ranges::stable_sort(candidates, {}, &Candidate::score);
    std::vector<bool> entryTaken(entryCount);
    std::vector<bool> windowTaken(windowCount);
    std::vector<Assignment> assignments;
    for (const Candidate& candidate : candidates) {
        if (entryTaken[candidate.entry] || windowTaken[candidate.window])
            continue;
        entryTaken[candidate.entry] = true;
        windowTaken[candidate.window] = true;
        assignments.push_back({candidate.entry, candidate.window});
    }
    return assignments;
}

/// The entries and the open windows of one application.
struct ApplicationGroup {
    std::vector<SavedLayoutEntry> entries;
    std::vector<WindowInfo> windows;
};

std::map<std::string, ApplicationGroup> groupByApplication(const std::vector<SavedLayoutEntry>& entries,
                                                           const std::vector<WindowInfo>& windows) {
    std::map<std::string, ApplicationGroup> groups;
    for (const SavedLayoutEntry& entry : entries)
        if (entry.bundleIdentifier)
            groups[*entry.bundleIdentifier].entries.push_back(entry);
    for (const WindowInfo& window : windows)
        if (window.bundleIdentifier)
            if (const auto group = groups.find(*window.bundleIdentifier); group != groups.end())
                group->second.windows.push_back(window);
    return groups;
}

double centreDistance(const Rect& a, const Rect& b) {
    return std::hypot(a.minX() + std::abs(a.width) / 2 - b.minX() - std::abs(b.width) / 2,
                      a.minY() + std::abs(a.height) / 2 - b.minY() - std::abs(b.height) / 2);
}

std::vector<Assignment> assignByDistance(const std::vector<SavedLayoutEntry>& entries,
                                         const std::vector<WindowInfo>& windows, double threshold) {
    std::vector<Candidate> candidates;
    for (std::size_t i = 0; i < entries.size(); ++i)
        for (std::size_t j = 0; j < windows.size(); ++j)
            if (const double distance = centreDistance(entries[i].frame, windows[j].frame);
                distance <= threshold)
                candidates.push_back({i, j, distance});
    return assign(std::move(candidates), entries.size(), windows.size());
}

std::int64_t slot(const SavedLayoutEntry& entry) {
    return entry.slotIndex.value_or(0);
}

double titleTerm(const std::string& foldedSavedTitle, const std::string& foldedTitle) {
    if (foldedSavedTitle.empty())
        return 0;
    return foldedSavedTitle == foldedTitle ? -10000.0 : 500.0;
}

double applicationNameTerm(const SavedLayoutEntry& entry, const WindowInfo& window) {
    const bool differs = entry.appName && !entry.appName->empty() && *entry.appName != window.appName;
    return differs ? 100.0 : 0.0;
}

/// Pairs the windows of one application; both lists are sorted into slot order on the way. The result is
/// in the order of the entries.
std::vector<Assignment> assignByScore(ApplicationGroup& group) {
    auto& [entries, windows] = group;
    std::ranges::stable_sort(entries, {}, slot);
    // Saved slots count front to back, open windows by window number: the stacking order changes with
    // every click, the numbers do not.
    std::ranges::stable_sort(windows, {}, &WindowInfo::id);
    std::vector<std::string> titles;
    for (const WindowInfo& window : windows)
        titles.push_back(foldedTitle(window.title));

    std::vector<Candidate> candidates;
    candidates.reserve(entries.size() * windows.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const SavedLayoutEntry& entry = entries[i];
        const std::string savedTitle = foldedTitle(entry.windowTitle.value_or(""));
        for (std::size_t j = 0; j < windows.size(); ++j) {
            const double slotDifference = static_cast<double>(slot(entry)) - static_cast<double>(j);
            const double score = frameDistance(entry.frame, windows[j].frame) +
                                 titleTerm(savedTitle, titles[j]) + applicationNameTerm(entry, windows[j]) +
                                 25.0 * std::abs(slotDifference);
            candidates.push_back({i, j, std::isnan(score) ? std::numeric_limits<double>::infinity() : score});
        }
    }
    auto assignments = assign(std::move(candidates), entries.size(), windows.size());
    std::ranges::sort(assignments, {}, &Assignment::entry);
    return assignments;
}

/// Where the windows of one layout go on the displays of now.
class TargetFrames {
public:
    TargetFrames(const SavedLayout& layout, const std::vector<DisplaySnapshot>& displays)
        : savedDisplays_(layout.savedDisplays.value_or(std::vector<SavedDisplay>{})),
          currentDisplays_(placementInputs({displays})),
          remapping_(DisplayRemapper{}.remap(savedDisplays_, currentDisplays_)) {}

    /// On a display that is as it was, exactly the saved frame; elsewhere the translated one. Windows and
    /// visible frames are kept in different spaces, so the limits of the translation would shift windows
    /// near an edge even where nothing has changed.
    Rect of(const SavedLayoutEntry& entry) const {
        return stoodOnUnchangedDisplay(entry) ? entry.frame
                                              : WindowPlacementTranslator{}.targetFrame(entry, remapping_);
    }

private:
    bool stoodOnUnchangedDisplay(const SavedLayoutEntry& entry) const {
        return std::ranges::any_of(savedDisplays_, [&](const SavedDisplay& saved) {
            return stoodOn(saved, entry) && std::ranges::any_of(currentDisplays_, [&](const auto& current) {
                       return current.isCalled(saved.displayIdentifier) &&
                              current.visibleFrame == saved.visibleFrame;
                   });
        });
    }

    /// Twins without a serial number share an identifier, so the place decides too.
    static bool stoodOn(const SavedDisplay& saved, const SavedLayoutEntry& entry) {
        constexpr double roundingError = 0.01;
        return entry.displayIdentifier == saved.displayIdentifier && entry.normalizedFrame &&
               frameDistance(frameFromFractions(*entry.normalizedFrame, saved.visibleFrame), entry.frame) <
                   roundingError;
    }

    std::vector<SavedDisplay> savedDisplays_;
    std::vector<DisplayPlacementInput> currentDisplays_;
    DisplayRemapping remapping_;
};

/// The saved place that held most of an application's windows; the place seen first wins a tie.
struct DominantTarget {
    SavedLayoutEntry entry;
    Rect frame;
};

DominantTarget dominantTarget(const std::vector<SavedLayoutEntry>& entries,
                              const TargetFrames& targetFrames) {
    using FrameKey = std::tuple<double, double, double, double>;
    struct Place {
        DominantTarget target;
        int count = 0;
    };
    std::vector<Place> places;
    std::map<FrameKey, std::size_t> placeOfKey;
    for (const SavedLayoutEntry& entry : entries) {
        const Rect frame = targetFrames.of(entry);
        const auto [position, isNew] =
            placeOfKey.try_emplace({frame.x, frame.y, frame.width, frame.height}, places.size());
        if (isNew)
            places.push_back({{entry, frame}});
        ++places[position->second].count;
    }
    return std::ranges::max_element(places, {}, &Place::count)->target;
}

} // namespace

std::vector<SavedLayoutEntry> RestoreMatcher::saneEntries(const SavedLayout& layout) const {
    std::vector<SavedLayoutEntry> entries;
    for (const SavedLayoutEntry& entry : layout.entries)
        if (isSaneFrame(entry.frame, coordinateSanityLimit_))
            entries.push_back(entry);
    return entries;
}

std::vector<MatchedPair> RestoreMatcher::pairs(const SavedLayout& layout,
                                               const std::vector<WindowInfo>& windows,
                                               const std::vector<DisplaySnapshot>& displays) const {
    const TargetFrames targetFrames(layout, displays);
    const std::vector<SavedLayoutEntry> entries = saneEntries(layout);
    std::vector<MatchedPair> pairs;
    const auto append = [&](const SavedLayoutEntry& entry, const WindowInfo& window) {
        pairs.push_back({entry, window, targetFrames.of(entry)});
    };
    if (layout.kind == SavedLayoutKind::generic) {
        for (const auto& [entry, window] : assignByDistance(entries, windows, genericDistanceThreshold_))
            append(entries[entry], windows[window]);
        return pairs;
    }
    for (auto& [bundleIdentifier, group] : groupByApplication(entries, windows))
        for (const auto& [entry, window] : assignByScore(group))
            append(group.entries[entry], group.windows[window]);
    return pairs;
}

std::vector<MatchedPair> RestoreMatcher::overflowPairs(const SavedLayout& layout,
                                                       const std::vector<WindowInfo>& windows,
                                                       const std::vector<DisplaySnapshot>& displays,
                                                       const std::vector<MatchedPair>& pairs) const {
    if (layout.kind == SavedLayoutKind::generic)
        return {};
    const TargetFrames targetFrames(layout, displays);
    std::set<std::int64_t> paired;
    for (const MatchedPair& pair : pairs)
        paired.insert(pair.windowInfo.id);

    std::vector<MatchedPair> overflow;
    for (auto& [bundleIdentifier, group] : groupByApplication(saneEntries(layout), windows)) {
        if (group.entries.size() >= group.windows.size())
            continue;
        const DominantTarget target = dominantTarget(group.entries, targetFrames);
        std::ranges::stable_sort(group.windows, {}, &WindowInfo::id);
        for (const WindowInfo& window : group.windows)
            if (!paired.contains(window.id))
                overflow.push_back({target.entry, window, target.frame});
    }
    return overflow;
}

} // namespace tavrin

#include "restore/restore_matcher.h"

#include "base/text.h"
#include "placement/window_placement.h"

#include <queue>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace tavrin {
namespace {

/// Positions count in the lists that were paired.
struct Assignment {
    std::size_t entry = 0;
    std::size_t window = 0;
};

/// The windows that one entry would take, best first. Only a few are kept, so that memory grows with the
/// number of entries and windows, not with that of pairs.
class Choices {
public:
    struct Choice {
        double score = 0;
        std::size_t window = 0;
    };

    /// Looks at all free windows, in their order. `score(window)` is absent for one that cannot be taken.
    template <class Score>
    void look(const std::vector<bool>& isTaken, Score score) {
        // An entry that has to search again is likely to have to once more.
        const std::size_t limit = best_.empty() ? firstLimit : laterLimit;
        best_.clear();
        next_ = 0;
        isComplete_ = true;
        for (std::size_t window = 0; window < isTaken.size(); ++window) {
            if (isTaken[window])
                continue;
            const std::optional<double> value = score(window);
            if (!value)
                continue;
            if (best_.size() == limit) {
                isComplete_ = false;
                if (*value >= best_.back().score)
                    continue;
                best_.pop_back();
            }
            best_.insert(std::ranges::upper_bound(best_, *value, {}, &Choice::score), {*value, window});
        }
    }

    /// The best that is free of those last seen; null when there is none.
    const Choice* best(const std::vector<bool>& isTaken) {
        while (next_ < best_.size() && isTaken[best_[next_].window])
            ++next_;
        return next_ < best_.size() ? &best_[next_] : nullptr;
    }

    /// There was none besides those last seen.
    bool isComplete() const { return isComplete_; }

private:
    static constexpr std::size_t firstLimit = 8;
    static constexpr std::size_t laterLimit = 64;

    std::vector<Choice> best_;
    std::size_t next_ = 0;
    bool isComplete_ = false;
};

/// Takes the pair with the lowest `score(entry, window)` first, of equal ones the earliest entry and then the
/// earliest window; whatever is taken once is not taken again. The result is in that order. A pair without a
/// score is never taken.
template <class Score>
std::vector<Assignment> assign(std::size_t entryCount, std::size_t windowCount, Score score) {
    std::vector<Choices> choices(entryCount);
    std::vector<bool> isTaken(windowCount);
    using Offer = std::pair<double, std::size_t>; // the score of an entry's best window, and the entry
    std::priority_queue<Offer, std::vector<Offer>, std::greater<>> offers;
    const auto offer = [&](std::size_t entry) {
        const auto* best = choices[entry].best(isTaken);
        if (!best && !choices[entry].isComplete()) {
            choices[entry].look(isTaken, [&](std::size_t window) { return score(entry, window); });
            best = choices[entry].best(isTaken);
        }
        if (best)
            offers.emplace(best->score, entry);
    };
    for (std::size_t entry = 0; entry < entryCount; ++entry)
        offer(entry);

    std::vector<Assignment> assignments;
    while (!offers.empty()) {
        const auto [offered, entry] = offers.top();
        offers.pop();
        const auto* best = choices[entry].best(isTaken);
        // Its window may be gone meanwhile; then it waits for its turn with the next one.
        if (!best || best->score != offered) {
            offer(entry);
            continue;
        }
        isTaken[best->window] = true;
        assignments.push_back({entry, best->window});
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
    return assign(entries.size(), windows.size(), [&](std::size_t i, std::size_t j) -> std::optional<double> {
        const double distance = centreDistance(entries[i].frame, windows[j].frame);
        return distance <= threshold ? std::optional(distance) : std::nullopt;
    });
}

std::int64_t slot(const SavedLayoutEntry& entry) {
    return entry.slotIndex.value_or(0);
}

/// Gives equal texts equal numbers from 1 on, because each is compared with very many.
class TextNumbers {
public:
    int of(const std::string& text) {
        return numbers_.try_emplace(text, static_cast<int>(numbers_.size()) + 1).first->second;
    }

private:
    std::map<std::string, int> numbers_;
};

/// Pairs the windows of one application; both lists are sorted into slot order on the way. The result is
/// in the order of the entries.
std::vector<Assignment> assignByScore(ApplicationGroup& group) {
    auto& [entries, windows] = group;
    std::ranges::stable_sort(entries, {}, slot);
    // Saved slots count front to back, open windows by window number: the stacking order changes with
    // every click, the numbers do not.
    std::ranges::stable_sort(windows, {}, &WindowInfo::id);
    // All that scoring needs, close together: it is asked for every pair.
    struct Features {
        Rect frame;
        double slot = 0;
        int title = 0;   ///< 0 for an entry whose title says nothing
        int appName = 0; ///< likewise
    };
    TextNumbers titles, names;
    std::vector<Features> ofEntries, ofWindows;
    for (const SavedLayoutEntry& entry : entries) {
        const std::string title = foldedTitle(entry.windowTitle.value_or(""));
        const std::string name = entry.appName.value_or("");
        ofEntries.push_back({.frame = entry.frame,
                             .slot = static_cast<double>(slot(entry)),
                             .title = title.empty() ? 0 : titles.of(title),
                             .appName = name.empty() ? 0 : names.of(name)});
    }
    for (const WindowInfo& window : windows)
        ofWindows.push_back({.frame = window.frame,
                             .slot = static_cast<double>(ofWindows.size()),
                             .title = titles.of(foldedTitle(window.title)),
                             .appName = names.of(window.appName)});

    auto assignments =
        assign(entries.size(), windows.size(), [&](std::size_t i, std::size_t j) -> std::optional<double> {
            const Features &saved = ofEntries[i], &open = ofWindows[j];
            const double titleTerm = saved.title == 0 ? 0 : saved.title == open.title ? -10000.0 : 500.0;
            const double nameTerm = saved.appName != 0 && saved.appName != open.appName ? 100.0 : 0.0;
            const double score = frameDistance(saved.frame, open.frame) + titleTerm + nameTerm +
                                 25.0 * std::abs(saved.slot - open.slot);
            return std::isnan(score) ? std::numeric_limits<double>::infinity() : score;
        });
    std::ranges::sort(assignments, {}, &Assignment::entry);
    return assignments;
}

/// Where the windows of one layout go on the current displays.
class TargetFrames {
public:
    TargetFrames(const SavedLayout& layout, const std::vector<DisplaySnapshot>& displays)
        : remapping_(DisplayRemapper{}.remap(layout.savedDisplays.value_or(std::vector<SavedDisplay>{}),
                                             placementInputs({displays}))) {}

    Rect of(const SavedLayoutEntry& entry) const {
        return WindowPlacementTranslator{}.targetFrame(entry, remapping_);
    }

private:
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

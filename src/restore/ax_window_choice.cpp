#include "restore/ax_window_choice.h"

#include "base/text.h"
#include "placement/window_placement.h"

#include <algorithm>
#include <cmath>

namespace tavrin {
namespace {

constexpr double nearestFrameLimit = 160.0;

using Candidates = std::vector<const AXWindowCandidate*>;

/// What a person could tell candidates apart by.
struct CandidateMetadata {
    std::string title;
    std::string role;
    std::string subrole;
    bool operator==(const CandidateMetadata&) const = default;
};

CandidateMetadata metadata(const AXWindowCandidate& candidate) {
    return {candidate.title, candidate.role.value_or(""), candidate.subrole.value_or("")};
}

template <class Predicate>
Candidates filtered(const Candidates& candidates, Predicate predicate) {
    Candidates kept;
    for (const AXWindowCandidate* candidate : candidates)
        if (predicate(*candidate))
            kept.push_back(candidate);
    return kept;
}

/// The candidates for which `predicate` holds, or all of them when it holds for none.
template <class Predicate>
Candidates narrowed(const Candidates& candidates, Predicate predicate) {
    Candidates kept = filtered(candidates, predicate);
    return kept.empty() ? candidates : kept;
}

bool isAtFrame(const AXWindowCandidate& candidate, const Rect& frame, double tolerance) {
    return candidate.frame && std::abs(candidate.frame->x - frame.x) < tolerance &&
           std::abs(candidate.frame->y - frame.y) < tolerance &&
           std::abs(candidate.frame->width - frame.width) < tolerance &&
           std::abs(candidate.frame->height - frame.height) < tolerance;
}

bool agreesInRole(const AXWindowCandidate& candidate, const SavedLayoutEntry& entry) {
    return (!entry.windowRole || entry.windowRole == candidate.role) &&
           (!entry.windowSubrole || entry.windowSubrole == candidate.subrole);
}

/// The candidates with the saved title; when none carries it (titles change), those with the live one.
Candidates narrowedByTitle(const Candidates& candidates, const SavedLayoutEntry& entry,
                           const WindowInfo& window) {
    for (const std::string& title :
         {foldedTitle(entry.windowTitle.value_or("")), foldedTitle(window.title)}) {
        if (title.empty())
            continue;
        auto kept = filtered(candidates,
                             [&](const auto& candidate) { return foldedTitle(candidate.title) == title; });
        if (!kept.empty())
            return kept;
    }
    return candidates;
}

/// The one in the saved slot when nothing tells the candidates apart; absent otherwise.
const AXWindowCandidate* twinInSlot(const Candidates& candidates, const SavedLayoutEntry& entry) {
    const bool areTwins = !candidates.empty() && std::ranges::all_of(candidates, [&](const auto* candidate) {
        return metadata(*candidate) == metadata(*candidates.front());
    });
    if (!areTwins)
        return nullptr;
    const auto last = static_cast<std::int64_t>(candidates.size()) - 1;
    return candidates[static_cast<std::size_t>(
        std::clamp<std::int64_t>(entry.slotIndex.value_or(0), 0, last))];
}

} // namespace

std::expected<AXElement, AXWindowChoiceFailure> chooseWindow(const std::vector<AXWindowCandidate>& candidates,
                                                             const SavedLayoutEntry& entry,
                                                             const WindowInfo& window,
                                                             double frameMatchTolerance) {
    Candidates all;
    for (const AXWindowCandidate& candidate : candidates)
        all.push_back(&candidate);
    const auto atFrame = [&](const AXWindowCandidate& candidate) {
        return isAtFrame(candidate, window.frame, frameMatchTolerance);
    };
    const auto inRole = [&](const AXWindowCandidate& candidate) { return agreesInRole(candidate, entry); };

    const Candidates frameMatches = filtered(all, atFrame);
    if (frameMatches.size() == 1)
        return frameMatches.front()->element;
    if (frameMatches.size() >= 2) {
        const Candidates likely = narrowed(narrowedByTitle(frameMatches, entry, window), inRole);
        if (likely.size() == 1)
            return likely.front()->element;
        if (const auto* twin = twinInSlot(likely, entry))
            return twin->element;
    }

    const Candidates pool = narrowedByTitle(all, entry, window);
    const Candidates roleMatches = filtered(pool, inRole);
    if (roleMatches.size() == 1)
        return roleMatches.front()->element;
    const Candidates framed =
        filtered(pool, [](const AXWindowCandidate& candidate) { return candidate.frame.has_value(); });
    const auto distance = [&](const auto* candidate) {
        return frameDistance(*candidate->frame, window.frame);
    };
    const Candidates near = filtered(framed, [&](const AXWindowCandidate& candidate) {
        return distance(&candidate) <= nearestFrameLimit;
    });
    const auto nearest =
        nearestFrame(near, window.frame, [](const auto* candidate) { return *candidate->frame; });
    if (nearest && nearest->isClear)
        return near[nearest->position]->element;
    if (pool.size() == 1)
        return pool.front()->element;
    if (const auto* twin = twinInSlot(pool, entry))
        return twin->element;
    return std::unexpected(AXWindowChoiceFailure{
        .candidatesWithFrames = static_cast<std::size_t>(std::ranges::count_if(
            candidates, [](const auto& candidate) { return candidate.frame.has_value(); })),
        .frameMatches = frameMatches.size(),
        .roleMatches = filtered(all, inRole).size(),
        .nearestScore = framed.empty()
                            ? std::nullopt
                            : std::optional(distance(*std::ranges::min_element(framed, {}, distance)))});
}

} // namespace tavrin

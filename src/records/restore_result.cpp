#include "records/restore_result.h"

#include "base/fatal.h"

#include <array>

namespace tavrin {
namespace {

constexpr std::array triggerNames = {
    std::pair{RestoreTriggerSource::menuBar, std::string_view("Menu Bar")},
    std::pair{RestoreTriggerSource::shortcut, std::string_view("Shortcut")},
    std::pair{RestoreTriggerSource::automation, std::string_view("Automation")}};

} // namespace

RestoreResult::RestoreResult(std::int64_t totalSaved, std::int64_t matched, std::int64_t skipped,
                             std::vector<std::string> errors, std::optional<std::int64_t> unmatchedCount,
                             std::optional<std::int64_t> moveFailureCount)
    : totalSaved(totalSaved), matched(matched), skipped(skipped), errors(std::move(errors)) {
    const auto missing = [&] {
        const auto rest =
            checkedDifference(checkedDifference(totalSaved, matched), moveFailureCount.value_or(0));
        return std::max<std::int64_t>(rest, 0);
    };
    this->unmatchedCount = unmatchedCount ? *unmatchedCount : missing();
    this->moveFailureCount =
        moveFailureCount ? *moveFailureCount
                         : std::max<std::int64_t>(checkedDifference(skipped, this->unmatchedCount), 0);
}

std::string_view displayName(RestoreTriggerSource source) {
    for (const auto& [candidate, name] : triggerNames)
        if (candidate == source)
            return name;
    fatal("a restore trigger without a name");
}

std::optional<RestoreTriggerSource> restoreTriggerSource(std::string_view displayName) {
    for (const auto& [source, name] : triggerNames)
        if (name == displayName)
            return source;
    return std::nullopt;
}

} // namespace tavrin

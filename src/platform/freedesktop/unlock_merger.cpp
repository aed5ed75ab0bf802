#include "platform/freedesktop/unlock_merger.h"

#include <utility>

namespace tavrin {

void UnlockMerger::locked(LockSource source) {
    locked_.insert(source);
}

bool UnlockMerger::unlocked(LockSource source, TimePoint now) {
    if (locked_.empty() && expected_.erase(source) > 0)
        return false;
    if (!locked_.empty())
        expected_ = std::exchange(locked_, {});
    expected_.erase(source);
    if (counted_ && now - *counted_ < window)
        return false;
    counted_ = now;
    return true;
}

} // namespace tavrin

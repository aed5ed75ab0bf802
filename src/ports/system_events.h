#pragma once

#include "base/token.h"

#include <functional>

namespace tavrin {

enum class SystemEvent {
    screenParametersChanged, ///< a screen came, went, moved or changed size; bursts are not merged
    didWake,
    screenIsUnlocked,    ///< once per unlock; also after login
    didBecomeActive,     ///< a window of this program came to the front
    trustMayHaveChanged, ///< the desktop may answer differently about the permission now
};

/// Tells about events of the desktop, on the main thread. An event that the desktop cannot report simply
/// never comes.
class SystemEvents {
public:
    virtual ~SystemEvents() = default;

    /// `handler` is called at every such event until the token is released.
    virtual Token observe(SystemEvent event, std::function<void()> handler) = 0;
};

} // namespace tavrin

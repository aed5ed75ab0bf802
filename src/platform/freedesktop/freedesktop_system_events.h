#pragma once

#include "base/timestamp.h"
#include "platform/freedesktop/bus_addresses.h"
#include "ports/session.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tavrin {

class SystemEventListener;

/// Tells when the computer woke (`didWake`) and when the user unlocked the screen (`screenIsUnlocked`), as
/// logind and the screen savers say it on the message buses; the other events come from elsewhere. Several
/// sources for one unlock make one event (see `UnlockMerger`). A signal counts only from the owner of its
/// service's name. Missing buses and services are normal: their events do not come until they appear.
class FreedesktopSystemEvents {
public:
    using Handler = std::function<void(SystemEvent)>;

    struct Configuration {
        BusAddresses buses = busAddresses();
        /// The session's name for logind; without it logind is asked which session this process is in.
        std::optional<std::string> sessionID = processEnvironment("XDG_SESSION_ID");
        Seconds retryInterval{10}; ///< between the attempts to reach a bus that is not there
    };

    /// `handler` is called from the event loop of the thread that this object was made in, not after its
    /// end. There must be an application object.
    FreedesktopSystemEvents(Configuration configuration, Handler handler);
    ~FreedesktopSystemEvents();

private:
    std::unique_ptr<SystemEventListener> listener_;
};

} // namespace tavrin

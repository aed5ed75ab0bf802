#pragma once

#include "platform/freedesktop/environment.h"

#include <optional>
#include <string>

namespace tavrin {

/// Where the message buses are reached, in D-Bus's notation; absent where there is none.
struct BusAddresses {
    std::optional<std::string> session;
    std::optional<std::string> system;
};

/// The buses of the session and of the computer. Never starts a bus: a session without one has none.
BusAddresses busAddresses(const Environment& environment = processEnvironment);

} // namespace tavrin

#include "platform/freedesktop/freedesktop_system_events.h"

#include "platform/freedesktop/system_event_listener.h"

#include <utility>

namespace tavrin {

FreedesktopSystemEvents::FreedesktopSystemEvents(Configuration configuration, Handler handler)
    : listener_(std::make_unique<SystemEventListener>(std::move(configuration), std::move(handler))) {}

FreedesktopSystemEvents::~FreedesktopSystemEvents() = default;

} // namespace tavrin

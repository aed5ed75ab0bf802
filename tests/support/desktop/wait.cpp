#include "support/desktop/wait.h"

#include <QCoreApplication>
#include <QTimer>

namespace tavrin::desktop {

namespace {

/// `quiet` starts anew with everything that arrives, `longest` does not.
bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds quiet,
               std::chrono::milliseconds longest) {
    QTimer silence, deadline;
    for (auto* timer : {&silence, &deadline})
        timer->setSingleShot(true);
    deadline.start(longest);
    while (!condition()) {
        if (!deadline.isActive())
            return false;
        silence.start(quiet);
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (!silence.isActive())
            return condition();
    }
    return true;
}

} // namespace

bool waitUntil(const std::function<bool()>& condition) {
    return waitUntil(condition, patience, 8 * patience);
}

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    return waitUntil(condition, limit, limit);
}

} // namespace tavrin::desktop

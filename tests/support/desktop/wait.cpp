#include "support/desktop/wait.h"

#include <QCoreApplication>
#include <QTimer>

namespace tavrin::desktop {

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.start(limit);
    while (!condition()) {
        if (!deadline.isActive())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace tavrin::desktop

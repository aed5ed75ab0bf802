#pragma once

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <functional>

namespace tavrin {

/// The application object that Qt's event loop needs, one for the whole run.
inline QCoreApplication& testApplication() {
    static int count = 1;
    static char name[] = "tests";
    static char* arguments[] = {name, nullptr};
    static QCoreApplication application(count, arguments);
    return application;
}

/// Handles events until `condition` holds. False when it does not within a time that no healthy run needs.
inline bool waitUntil(const std::function<bool()>& condition,
                      std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    bool isLate = false;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, [&] { isLate = true; });
    timer.start(limit);
    while (!condition() && !isLate)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return condition();
}

} // namespace tavrin

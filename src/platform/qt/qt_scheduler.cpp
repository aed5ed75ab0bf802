#include "platform/qt/qt_scheduler.h"

#include <QPointer>
#include <QTimer>

#include <cmath>
#include <limits>

namespace tavrin {
namespace {

/// Rounded up, so that nothing runs early; negative and undefined times count as none.
int wholeMilliseconds(Seconds time) {
    const double milliseconds = std::ceil(time.count() * 1000);
    if (!(milliseconds > 0))
        return 0;
    constexpr int longest = std::numeric_limits<int>::max();
    return milliseconds < longest ? static_cast<int>(milliseconds) : longest;
}

} // namespace

Token QtScheduler::after(Seconds delay, std::function<void()> task) {
    return start(delay, Repetition::once, std::move(task));
}

Token QtScheduler::every(Seconds interval, std::function<void()> task) {
    return start(interval, Repetition::always, std::move(task));
}

Token QtScheduler::start(Seconds interval, Repetition repetition, std::function<void()> task) {
    auto* timer = new QTimer(&timers_);
    timer->setTimerType(Qt::PreciseTimer);
    timer->setSingleShot(repetition == Repetition::once);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, repetition, task = std::move(task)] {
        // The task may release its token; this object lives until the event loop runs again.
        if (repetition == Repetition::once)
            timer->deleteLater();
        task();
    });
    timer->start(wholeMilliseconds(interval));
    return Token([timer = QPointer(timer)] {
        if (!timer)
            return;
        timer->stop();
        timer->deleteLater();
    });
}

} // namespace tavrin

#include "platform/qt/qt_event_loop.h"

#include <QPointer>
#include <QSocketNotifier>

namespace tavrin {

Token QtEventLoop::watchReadable(int fileDescriptor, std::function<void()> handler) {
    // Qt reports a closed other end and an error condition as readable too.
    auto* notifier = new QSocketNotifier(fileDescriptor, QSocketNotifier::Read, &notifiers_);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier,
                     [handler = std::move(handler)] { handler(); });
    return Token([notifier = QPointer(notifier)] {
        if (!notifier)
            return;
        notifier->setEnabled(false);
        // Not deleted here: the handler itself may be what releases the token.
        notifier->deleteLater();
    });
}

} // namespace tavrin

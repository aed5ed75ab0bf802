#pragma once

#include "ports/runtime.h"

#include <QObject>

namespace tavrin {

/// File descriptors watched by Qt's event loop.
class QtEventLoop final : public EventLoop {
public:
    Token watchReadable(int fileDescriptor, std::function<void()> handler) override;

private:
    QObject notifiers_; ///< parent of every notifier, so that none outlives the loop
};

} // namespace tavrin

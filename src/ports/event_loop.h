#pragma once

#include "base/token.h"

#include <functional>

namespace tavrin {

/// The main thread's event loop, as far as platform layers need it.
class EventLoop {
public:
    virtual ~EventLoop() = default;

    /// `handler` is called whenever `fileDescriptor` has something to read (or its other end is gone)
    /// until the token is released. The descriptor stays the caller's and must outlive the token.
    virtual Token watchReadable(int fileDescriptor, std::function<void()> handler) = 0;
};

} // namespace tavrin

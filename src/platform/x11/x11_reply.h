#pragma once

#include <cstdlib>
#include <memory>

namespace tavrin {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

/// An answer or an event as xcb hands it out; null for an error.
template <class Content>
using X11Reply = std::unique_ptr<Content, FreeDeleter>;

template <class Content>
X11Reply<Content> owned(Content* content) {
    return X11Reply<Content>(content);
}

} // namespace tavrin

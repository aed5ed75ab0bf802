#pragma once

#include "platform/x11/x11_atoms.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <expected>
#include <memory>
#include <string>
#include <utility>

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

/// What the server offers beyond the core protocol.
struct X11Extensions {
    bool hasMonitors = false;     ///< RandR 1.5
    bool hasClientIDs = false;    ///< X-Resource 1.2
    bool hasRawKeys = false;      ///< XInput 2.1, which delivers raw keys also during grabs, and XKB
    bool isWaylandBridge = false; ///< the server shows its windows inside a Wayland compositor
    std::uint8_t randrFirstEvent = 0;
    std::uint8_t xinputOpcode = 0;
    std::uint8_t xkbFirstEvent = 0;
};

/// A connection to an X server and what every user of it needs to know.
class X11Connection {
public:
    /// An empty name means the display of the environment. The error says in words what failed.
    static std::expected<std::unique_ptr<X11Connection>, std::string> open(const std::string& displayName);

    /// Another one to the same server, which is not asked again what this one knows.
    std::expected<std::unique_ptr<X11Connection>, std::string> openAnother() const;

    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    xcb_connection_t* get() const { return connection_; }
    const xcb_screen_t& screen() const { return *screen_; }
    xcb_window_t root() const { return screen_->root; }
    const X11Atoms& atoms() const { return atoms_; }
    const X11Extensions& extensions() const { return extensions_; }
    /// What the compositing manager of this screen owns.
    xcb_atom_t compositorSelection() const { return compositorSelection_; }
    int fileDescriptor() const { return xcb_get_file_descriptor(connection_); }

    /// The server is gone; every further request answers nothing.
    bool isBroken() const { return xcb_connection_has_error(connection_) != 0; }

    /// The part of a resource's number that names the client it belongs to.
    std::uint32_t clientOf(std::uint32_t resource) const;

private:
    X11Connection(std::string displayName, xcb_connection_t* connection, xcb_screen_t* screen)
        : displayName_(std::move(displayName)), connection_(connection), screen_(screen) {}
    static std::expected<std::unique_ptr<X11Connection>, std::string> connect(const std::string& displayName,
                                                                              int& screenNumber);
    void prefetchExtensions();
    void readExtensions();

    std::string displayName_;
    xcb_connection_t* connection_;
    xcb_screen_t* screen_;
    X11Atoms atoms_;
    X11Extensions extensions_;
    xcb_atom_t compositorSelection_ = XCB_ATOM_NONE;
};

} // namespace tavrin

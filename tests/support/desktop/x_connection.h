#pragma once

#include "base/geometry.h"

#include <QSocketNotifier>
#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tavrin::desktop {

/// A reply or event of the X library, freed with this pointer.
struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename T>
using Reply = std::unique_ptr<T, FreeReply>;

/// The harness's own connection to the X server. Its events wake `waitUntil`.
class XConnection {
public:
    /// A change of position or size that the server carried out on a window directly below the root.
    struct Move {
        xcb_window_t window = XCB_NONE;
        Rect frame;
    };

    explicit XConnection(const std::string& display);
    ~XConnection();
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    bool isOpen() const { return !xcb_connection_has_error(connection_); }
    xcb_connection_t* raw() const { return connection_; }
    xcb_window_t root() const { return screen_->root; }
    const xcb_screen_t& screen() const { return *screen_; }

    xcb_atom_t atom(const std::string& name);
    /// The 32-bit items of a property; empty when the window or the property is gone.
    std::vector<std::uint32_t> cardinals(xcb_window_t window, const std::string& property);
    std::string text(xcb_window_t window, const std::string& property);
    void setCardinals(xcb_window_t window, const std::string& property, xcb_atom_t type,
                      const std::vector<std::uint32_t>& values);
    /// Asks the window manager: a client message about `window` to the root window.
    void askWindowManager(xcb_window_t window, const std::string& message, std::array<std::uint32_t, 5> data);

    /// Wakes the harness when this window's properties or geometry change.
    void watch(xcb_window_t window);
    void ignore(xcb_window_t window);
    /// Returns once the server has handled everything asked so far; its events are then in.
    void sync();

    /// Called with every event; codes of extensions are the caller's to know.
    std::function<void(const xcb_generic_event_t&)> onEvent;

    /// Every move since the last call, oldest first. Windows that were only raised do not count.
    std::vector<Move> takeMoves();

private:
    void handleEvents();
    void noteCreated(const xcb_create_notify_event_t& event);
    void noteConfigured(const xcb_configure_notify_event_t& event);

    xcb_connection_t* connection_;
    xcb_screen_t* screen_ = nullptr;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::map<std::string, xcb_atom_t> atoms_;
    std::map<xcb_window_t, Rect> lastFrames_;
    std::vector<Move> moves_;
    QMetaObject::Connection beforeBlocking_;
};

} // namespace tavrin::desktop

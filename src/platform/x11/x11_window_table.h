#pragma once

#include "platform/x11/x11_query_connection.h"
#include "platform/x11/x11_window_reader.h"

#include <map>
#include <optional>
#include <vector>

namespace tavrin {

/// The mirror of the client windows. The first question reads everything in a few round trips, whatever the
/// number of windows; later ones read again only what changed since.
class X11WindowTable final : public X11Mirror {
public:
    explicit X11WindowTable(X11QueryConnection& connection);

    /// Brings the mirror up to date. False when there is no window list (no server, no window manager).
    bool refresh(Freshness freshness);

    /// As `refresh` with `Freshness::now`, and reads the list, and visibility and geometry of all windows,
    /// again: a window manager may hide or shift a window with its frame without the window being told.
    bool refreshPlaces();

    // All below answer from the mirror as the last refresh left it.

    /// Front to back, desktop elements included.
    const std::vector<const X11Window*>& windows() const { return windows_; }

    /// Null when the window is not listed. Like the list's, the pointer is valid until the next refresh.
    const X11Window* find(xcb_window_t window) const;

    /// The active window, if there is one and it is listed.
    const X11Window* activeWindow() const { return activeWindow_ ? find(*activeWindow_) : nullptr; }

    /// The user can see the window's contents on some screen now: it is neither minimised nor shaded nor on a
    /// desktop that is not shown.
    bool isOnScreen(const X11Window& window) const;

    /// Something about the window is about to change without an event.
    void markOutdated(xcb_window_t window, WindowPart parts);

    void handleEvent(const xcb_generic_event_t& event) override;
    void forget() override;

private:
    struct Entry {
        X11Window window;
        WindowPart outdated = WindowPart::none;
        int eventCount = 0;
        bool isListed = false;
    };

    void markOutdated(Entry& entry, WindowPart parts);
    void readRoot();
    void takeWindowList(const std::vector<std::uint32_t>& bottomToTop);
    void readOutdated();
    void rebuildList();
    void handleRootProperty(xcb_atom_t property);
    Entry* senderOf(xcb_window_t window);

    X11QueryConnection& connection_;
    X11WindowReader reader_;
    std::map<xcb_window_t, Entry> entries_;
    std::vector<xcb_window_t> stacking_; ///< front to back
    std::vector<const X11Window*> windows_;
    bool hasWindowList_ = false;
    bool isRootOutdated_ = true;
    bool hasLoud_ = false;     ///< some window sent more events than are listened to
    bool hasOutdated_ = false; ///< some entry is; most questions find none, so they need not look
    std::optional<std::uint32_t> shownDesktop_; ///< absent where windows of other desktops are unmapped
    std::optional<xcb_window_t> activeWindow_;
};

} // namespace tavrin

#pragma once

#include "base/geometry.h"
#include "base/timestamp.h"
#include "base/token.h"
#include "ports/application_catalog.h"
#include "ports/screen_list.h"
#include "records/key_combo.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tavrin {

/// What a window is for, as far as it matters here.
enum class WindowKind {
    standard,
    dialog,
    floating, ///< a palette or torn-off tool bar
};

/// A window's number in its window system. Stays the same while the window is open.
using WindowID = std::int64_t;

/// An application's window. All texts come from other programs: valid UTF-8 of bounded length.
struct DesktopWindow {
    WindowID id = 0;
    ApplicationClues application;
    std::string title; ///< empty when the window has none
    /// What the user sees: title bar and borders included, invisible shadows not. Points, desktop space.
    Rect frame;
    /// The user can see it on some screen now: neither minimised nor on a hidden desktop or workspace.
    bool isOnScreen = true;
    WindowKind kind = WindowKind::standard;
    /// The window manager decides about its place and size. Such a window can only be sent to a screen.
    bool isTiled = false;

    bool operator==(const DesktopWindow&) const = default;
};

/// All windows that a user would call windows: minimised and hidden ones included; wallpaper, panels, menus
/// and notifications left out.
struct WindowListing {
    std::vector<DesktopWindow> windows;   ///< front to back
    std::optional<WindowID> activeWindow; ///< absent when no listed window has the keyboard
    std::optional<Rect> primaryScreen;    ///< its `frame`, where it is cheaper to tell than all screens
};

/// A screen as the window system arranges it. Mirrored outputs (the same area twice) are one screen.
struct DesktopScreen {
    Rect frame;             ///< points, desktop space
    Rect workArea;          ///< the part of `frame` that panels and docks leave free; points, desktop space
    double scale = 1;       ///< pixels per point, as the user chose it
    bool isPrimary = false; ///< true for exactly one screen, the origin of the records' spaces
    std::vector<DisplayHardware> hardware; ///< of every output that shows this area; empty without an output

    bool operator==(const DesktopScreen&) const = default;
};

/// Where a window is to go.
struct WindowPlacement {
    WindowID window = 0;
    Rect frame; ///< as `DesktopWindow::frame`

    bool operator==(const WindowPlacement&) const = default;
};

/// What came of placing a window.
enum class PlacementOutcome {
    done,     ///< it is at the target
    adjusted, ///< it is there, in a size that its client rounded or limited
    pending,  ///< accepted; a hidden window carries it out when it is shown
    tiled,    ///< the window manager decides about its place; it is on the wanted screen
    timedOut, ///< no answer within the bound, or the window did not go there; it may still happen later
    gone,     ///< there is no such window any more
    refused,  ///< the frame is no frame a window can have, or the window system forbids it
};

/// Why windows cannot be read and moved.
enum class WindowSystemObstacle {
    noWindowManager, ///< X11 without a window manager that follows EWMH
    partialView,     ///< an X server that is a bridge into a Wayland session: it shows some windows only
    unsupportedCompositor, ///< a Wayland compositor that lets no program move windows
    extensionMissing,      ///< the desktop needs an extension that is not installed or not enabled
    loginNeeded,           ///< the extension is enabled, and loaded at the next login
    extensionMismatch,     ///< the extension is of another version than this program
    notAnswering,          ///< the window system does not answer, or its answers make no sense
};

enum class WindowSystemEvent {
    screensChanged,      ///< a screen or work area came, went, moved or changed; bursts are not merged
    availabilityChanged, ///< `availability` may answer differently now
    refusedKeysChanged,  ///< `refusedKeys` answers differently now
    connectionLost,      ///< for good: nothing works any more
};

/// Everything that the program needs of the system that arranges windows on screens. One implementation for
/// each such system; nothing above this interface knows which one it runs on.
///
/// Desktop space: points, origin at the top left of the whole desktop as the window system counts it, y
/// downwards. The shared layer above turns it into the spaces of the records.
///
/// Main thread only. Every operation returns within about a second, whatever other programs do; only `place`
/// goes on as long as answers come. What other programs answer is bounded in length and checked before it
/// gets here.
class WindowSystem {
public:
    virtual ~WindowSystem() = default;

    /// What manages the windows, for example "Openbox" or "sway 1.10"; empty when it is not known.
    virtual std::string name() = 0;

    /// Nothing when windows of all applications can be read and moved now, else why not.
    virtual std::optional<WindowSystemObstacle> obstacle() = 0;

    /// Asks the desktop for what is missing, on the user's word. What comes of it is told by
    /// `availabilityChanged`.
    virtual void requestAccess() {}

    /// All windows now, in one answer; the obstacle when they cannot be read.
    virtual std::expected<WindowListing, WindowSystemObstacle> list() = 0;

    /// Places windows and waits, together and for at most `patience` seconds, until the clients have
    /// answered; gives up earlier when nothing at all was answered for a while. Maximised, fullscreen and
    /// shaded states are left first. One outcome for each placement, in their order: windows that do not
    /// answer never hold up the others.
    virtual std::vector<PlacementOutcome> place(std::span<const WindowPlacement> placements,
                                                Seconds patience) = 0;

    /// The screens that are on, in an order that stays the same while none changes; empty when there is none
    /// or the window system does not answer.
    virtual std::vector<DesktopScreen> screens() = 0;

    /// From now on `pressed` is called whenever exactly one of these combinations is pressed, whoever has the
    /// keyboard: once per press, not while it is held. Replaces the set watched before; an empty one stops
    /// watching, and costs nothing.
    virtual void watchKeys(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed) = 0;

    /// Whether watched presses are reserved: then no window gets them, this program's own neither.
    virtual bool reservesKeys() const { return false; }

    /// Those of the watched combinations that are not delivered.
    virtual std::vector<RefusedKey> refusedKeys() = 0;

    /// Why no combination at all can be delivered, as a sentence for the user; empty when they can.
    virtual std::string keyObstacle() { return {}; }

    /// The position (evdev code) of the key that the toolkit reports by this native scan code; absent for
    /// none.
    virtual std::optional<std::uint32_t> keyPosition(std::uint32_t nativeScanCode) = 0;

    /// Puts a window of this program in front and gives it the keyboard. `token` is what the desktop handed
    /// over for it; empty without one. False when the toolkit's own way has to do.
    virtual bool activate(WindowID window, const std::string& token) = 0;

    /// Where the mouse pointer is; points, desktop space. Absent when the window system does not tell.
    virtual std::optional<Point> pointer() = 0;

    /// `handler` is called, on the main thread, at every such event until the token is released.
    virtual Token observe(WindowSystemEvent event, std::function<void()> handler) = 0;
};

} // namespace tavrin

#pragma once

#include "platform/windows/window_system.h"
#include "ports/application_catalog.h"
#include "ports/runtime.h"

#include <expected>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace tavrin {

/// A window with the application it belongs to.
struct ListedWindow {
    DesktopWindow window; ///< its frame is in window space
    ApplicationIdentity application;
};

/// The windows and screens of a window system in the spaces of the records. One listing answers all questions
/// until control returns to the event loop, so that a whole save or restore reads the desktop once.
///
/// Window space: points, origin at the top left of the primary screen, y downwards.
class ListedWindows {
public:
    /// The collaborators must outlive this object.
    ListedWindows(WindowSystem& system, ApplicationCatalog& catalog, Scheduler& scheduler);

    using Windows = std::vector<ListedWindow>;

    /// Front to back; the obstacle when they cannot be read. The list is valid until the next call of
    /// anything here.
    std::expected<const Windows*, WindowSystemObstacle> windows();

    /// Null when it is not listed.
    const ListedWindow* find(WindowID window);

    /// The listed window that has the keyboard; null when none has.
    const ListedWindow* active();

    /// Frames and work areas in desktop space.
    const std::vector<DesktopScreen>& screens();

    /// The frame of the primary screen in desktop space; empty, at the origin, without a screen.
    Rect primaryFrame();

    /// As `WindowSystem::place`, with frames in window space; waits the longer, the more windows there are.
    /// The outcomes are entered in the listing, or it is read again when they do not tell where a window is
    /// now.
    std::vector<PlacementOutcome> place(std::vector<WindowPlacement> placements);

private:
    void keepUntilNextTurn();
    void forget();
    void patch(std::span<const WindowPlacement> placements, std::span<const PlacementOutcome> outcomes);
    Windows take(WindowListing listing);

    WindowSystem& system_;
    ApplicationCatalog& catalog_;
    Scheduler& scheduler_;
    std::optional<std::expected<Windows, WindowSystemObstacle>> windows_; ///< absent: to be read
    std::unordered_map<WindowID, std::size_t> positions_;                 ///< in the list
    std::optional<WindowID> active_;
    std::optional<std::vector<DesktopScreen>> screens_; ///< absent: to be read
    std::optional<Rect> primary_;                       ///< absent: that of the screens
    Token turn_;
    std::vector<Token> observers_;
};

} // namespace tavrin

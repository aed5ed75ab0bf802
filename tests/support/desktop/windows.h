#pragma once

#include "base/geometry.h"

#include <QtGlobal>

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tavrin::desktop {

/// A window's name for itself on its desktop. On X that is its number, so the two turn into each other.
class WindowHandle {
public:
    WindowHandle() = default;
    WindowHandle(std::string id) : id_(std::move(id)) {}
    WindowHandle(std::uint32_t xWindow) : id_(std::to_string(xWindow)) {}
    operator std::uint32_t() const {
        return static_cast<std::uint32_t>(std::strtoul(id_.c_str(), nullptr, 10));
    }

    const std::string& id() const { return id_; }
    bool operator==(const WindowHandle&) const = default;

private:
    std::string id_;
};

/// The windows on the desktop as a person sees and handles them. Frames are what is visible of a window:
/// title bar and borders included, client-side shadows left out; points from the top left of the whole
/// desktop, y downwards.
class Windows {
public:
    virtual ~Windows() = default;

    virtual std::optional<WindowHandle> find(const std::string& title) = 0;
    virtual std::optional<WindowHandle> waitForTitle(const std::string& title) = 0;
    /// Waits until the desktop has taken up a window that a client opened. `number` is the X window's; 0 for
    /// a window of another kind, which is told by its process and title.
    virtual std::optional<WindowHandle> waitForOpened(std::uint32_t number, qint64 pid,
                                                      const std::string& title) = 0;

    virtual std::string title(const WindowHandle& window) = 0;
    /// Absent when the window is gone.
    virtual std::optional<Rect> visibleFrame(const WindowHandle& window) = 0;
    /// Where a window of that process is on the screen, menus and the like included; absent without one.
    virtual std::optional<Rect> areaOfProcess(qint64 pid) = 0;

    /// Drags and resizes a window so that it is seen at `frame`, and waits until it is there. Windows with
    /// size increments take the nearest size.
    virtual bool place(const WindowHandle& window, const Rect& frame) = 0;
    /// The same without waiting.
    virtual void tell(const WindowHandle& window, const Rect& frame) = 0;
    /// Makes a window as large as its monitor, or ends that, and waits until it is so.
    virtual bool maximise(const WindowHandle& window) = 0;
    virtual bool unmaximise(const WindowHandle& window) = 0;
    /// Has it fill its monitor; where the desktop knows that, to the left half of it.
    virtual bool makeFullscreen(const WindowHandle& window) = 0;
    virtual bool tileLeft(const WindowHandle&) { return false; }
    virtual void activate(const WindowHandle& window) = 0;
    virtual void close(const WindowHandle& window) = 0;

    /// From now on the window's changes wake nobody here.
    virtual void ignore(const WindowHandle&) {}
    virtual bool isFullscreen(const WindowHandle& window) = 0;

    /// The process of the window that gets the keys now; 0 when none says so.
    virtual qint64 processWithKeyboard() = 0;
};

/// The windows of a desktop that tells all about all of them at once.
class ListedWindows : public Windows {
public:
    std::optional<WindowHandle> find(const std::string& title) override;
    std::optional<WindowHandle> waitForTitle(const std::string& title) override;
    std::optional<WindowHandle> waitForOpened(std::uint32_t number, qint64 pid,
                                              const std::string& title) override;
    std::string title(const WindowHandle& window) override;
    std::optional<Rect> visibleFrame(const WindowHandle& window) override;
    std::optional<Rect> areaOfProcess(qint64 pid) override;
    bool isFullscreen(const WindowHandle& window) override;
    qint64 processWithKeyboard() override;

protected:
    struct Listed {
        std::string id;
        std::string title;
        qint64 pid = 0;
        std::uint32_t xWindow = 0; ///< 0 where the desktop does not tell
        Rect frame;
        bool isVisible = false;
        bool isFocused = false;
        bool isFullscreen = false;
        bool isTiled = false;
    };

    virtual std::vector<Listed> list() = 0;
    std::optional<Listed> first(const std::function<bool(const Listed&)>& isWanted);
    std::optional<Listed> listed(const WindowHandle& window);

private:
    std::set<std::string> opened_;
};

} // namespace tavrin::desktop

#include "support/desktop/windows.h"

#include "support/desktop/wait.h"

namespace tavrin::desktop {

std::optional<ListedWindows::Listed>
ListedWindows::first(const std::function<bool(const Listed&)>& isWanted) {
    for (const auto& window : list())
        if (isWanted(window))
            return window;
    return std::nullopt;
}

std::optional<ListedWindows::Listed> ListedWindows::listed(const WindowHandle& window) {
    return first([&](const Listed& listed) { return listed.id == window.id(); });
}

std::optional<WindowHandle> ListedWindows::find(const std::string& title) {
    const auto found = first([&](const Listed& window) { return window.title == title; });
    return found ? std::optional<WindowHandle>(found->id) : std::nullopt;
}

std::optional<WindowHandle> ListedWindows::waitForTitle(const std::string& title) {
    std::optional<WindowHandle> found;
    waitUntil([&] { return (found = find(title)).has_value(); });
    return found;
}

std::optional<WindowHandle> ListedWindows::waitForOpened(std::uint32_t number, qint64 pid,
                                                         const std::string& title) {
    std::optional<Listed> found;
    waitUntil(
        [&] {
            found = first([&](const Listed& window) {
                return number != 0 && window.xWindow != 0
                           ? window.xWindow == number
                           : window.pid == pid && window.title == title && !opened_.contains(window.id);
            });
            return found && !found->isTiled;
        },
        patience / 3); // who opened it may open it again
    if (!found)
        return std::nullopt;
    opened_.insert(found->id);
    return found->id;
}

std::string ListedWindows::title(const WindowHandle& window) {
    const auto found = listed(window);
    return found ? found->title : std::string();
}

std::optional<Rect> ListedWindows::visibleFrame(const WindowHandle& window) {
    const auto found = listed(window);
    return found ? std::optional(found->frame) : std::nullopt;
}

std::optional<Rect> ListedWindows::areaOfProcess(qint64 pid) {
    const auto found = first([&](const Listed& window) { return window.pid == pid && window.isVisible; });
    return found ? std::optional(found->frame) : std::nullopt;
}

bool ListedWindows::isFullscreen(const WindowHandle& window) {
    const auto found = listed(window);
    return found && found->isFullscreen;
}

qint64 ListedWindows::processWithKeyboard() {
    const auto found = first([](const Listed& window) { return window.isFocused; });
    return found ? found->pid : 0;
}

} // namespace tavrin::desktop

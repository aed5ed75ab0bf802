#include "ui/layout_picture.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <ranges>

namespace tavrin {
namespace {

constexpr double coordinateLimit = 100'000;
constexpr double largestPanel = 0.1; ///< of a display's height

bool isDrawable(const Rect& frame) {
    return isSaneFrame(frame, coordinateLimit);
}

Rect intersection(const Rect& a, const Rect& b) {
    const double x = std::max(a.minX(), b.minX());
    const double y = std::max(a.minY(), b.minY());
    return {x, y, std::max(0.0, std::min(a.maxX(), b.maxX()) - x),
            std::max(0.0, std::min(a.maxY(), b.maxY()) - y)};
}

/// The height of the primary display, the one with its corner at the origin of both spaces. Its usable
/// area ends below a panel at the top, if there is one. A panel is taken for granted when without it a
/// window would hang below the usable area, and no window lies where the panel would be.
double primaryHeight(const std::vector<SavedDisplay>& displays,
                     const std::vector<SavedLayoutEntry>& entries) {
    const auto& primary =
        std::ranges::min(displays, {}, [](const SavedDisplay& display) {
            return std::abs(display.visibleFrame.minX()) + std::abs(display.visibleFrame.minY());
        }).visibleFrame;
    double lowest = 0;
    double highest = largestPanel * primary.height;
    for (const SavedLayoutEntry& entry : entries) {
        const Point middle{entry.frame.x + entry.frame.width / 2, entry.frame.y + entry.frame.height / 2};
        if (!isDrawable(entry.frame) || middle.x < primary.minX() || middle.x > primary.maxX() ||
            middle.y < 0 || middle.y > primary.height)
            continue;
        lowest = std::max(lowest, entry.frame.maxY() - primary.height);
        highest = std::min(highest, std::max(entry.frame.y, 0.0));
    }
    return primary.maxY() + std::min(lowest, highest);
}

std::vector<LayoutPicture::Screen> screensOf(const SavedLayout& layout, LayoutPicture::ScreenNames names) {
    std::vector<SavedDisplay> displays = layout.savedDisplays.value_or(std::vector<SavedDisplay>{});
    std::erase_if(displays, [](const SavedDisplay& display) { return !isDrawable(display.visibleFrame); });
    if (displays.empty())
        return {};
    const double height = primaryHeight(displays, layout.entries);
    std::vector<LayoutPicture::Screen> screens;
    for (const SavedDisplay& display : displays) {
        const Rect& visible = display.visibleFrame;
        screens.push_back(
            {{visible.x, height - visible.maxY(), visible.width, visible.height}, display.isInternal});
        if (names == LayoutPicture::ScreenNames::shown)
            screens.back().name = display.isInternal
                                      ? "Built-in"
                                      : fmt::format("{:.0f} × {:.0f}", visible.width, visible.height);
    }
    return screens;
}

LayoutPicture::Window windowOf(const SavedLayoutEntry& entry,
                               const std::vector<LayoutPicture::Screen>& screens) {
    LayoutPicture::Window window{.frame = entry.frame,
                                 .visibleFrame = screens.empty() ? entry.frame : Rect{},
                                 .label = entry.appName.value_or(entry.bundleIdentifier.value_or("Window")),
                                 .title = entry.windowTitle.value_or(""),
                                 .bundleIdentifier = entry.bundleIdentifier};
    for (std::size_t i = 0; i < screens.size(); ++i) {
        const Rect part = intersection(entry.frame, screens[i].frame);
        if (part.width * part.height > window.visibleFrame.width * window.visibleFrame.height) {
            window.visibleFrame = part;
            window.screen = i;
        }
    }
    return window;
}

double area(const LayoutPicture::Window& window) {
    return window.frame.width * window.frame.height;
}

void moveBy(Rect& rect, const Rect& bounds) {
    rect.x -= bounds.x;
    rect.y -= bounds.y;
}

} // namespace

LayoutPicture makeLayoutPicture(const SavedLayout& layout, LayoutPicture::ScreenNames names) {
    LayoutPicture picture{.screens = screensOf(layout, names)};
    // Entries of one application stand front to back.
    for (const SavedLayoutEntry& entry : std::views::reverse(layout.entries)) {
        if (!isDrawable(entry.frame))
            continue;
        auto window = windowOf(entry, picture.screens);
        if (window.visibleFrame.width > 0 && window.visibleFrame.height > 0)
            picture.windows.push_back(std::move(window));
    }
    std::ranges::stable_sort(picture.windows, std::greater{}, area);

    std::optional<Rect> bounds;
    const auto include = [&](const Rect& frame) { bounds = bounds ? unionOf(*bounds, frame) : frame; };
    for (const auto& screen : picture.screens)
        include(screen.frame);
    if (!bounds)
        for (const auto& window : picture.windows)
            include(window.frame);
    if (!bounds)
        return picture;
    picture.size = {bounds->width, bounds->height};
    for (auto& screen : picture.screens)
        moveBy(screen.frame, *bounds);
    for (auto& window : picture.windows) {
        moveBy(window.frame, *bounds);
        moveBy(window.visibleFrame, *bounds);
    }
    return picture;
}

std::string LayoutPicture::description() const {
    std::vector<std::map<std::string, int>> applications(std::max<std::size_t>(1, screens.size()));
    for (const Window& window : windows)
        ++applications[window.screen][window.label];
    std::vector<std::string> sentences;
    for (std::size_t i = 0; i < applications.size(); ++i) {
        std::vector<std::string> names;
        for (const auto& [name, count] : applications[i])
            names.push_back(count == 1 ? name : fmt::format("{} ({} windows)", name, count));
        sentences.push_back(fmt::format("{}: {}.",
                                        screens.empty() ? "Windows" : fmt::format("Display {}", i + 1),
                                        names.empty() ? "empty" : fmt::format("{}", fmt::join(names, ", "))));
    }
    return fmt::format("{}", fmt::join(sentences, " "));
}

} // namespace tavrin

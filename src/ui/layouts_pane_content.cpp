#include "ui/layouts_pane_content.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace tavrin {
namespace {

constexpr std::size_t namedLayouts = 6;

std::string counted(std::size_t count, const char* thing) {
    return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

} // namespace

std::string windowCountText(std::size_t count) {
    return counted(count, "window");
}

DeletionQuestion layoutDeletionQuestion(const LayoutCard& layout, const SetupCard& setup) {
    std::string message =
        fmt::format("The saved places of {} will be lost.", windowCountText(layout.windowCount));
    if (layout.shortcut)
        message += fmt::format(" Its shortcut {} will be removed.", layout.shortcut->displayString());
    if (layout.isDefault)
        message += fmt::format(" It is the default layout of “{}”, which will have none then.", setup.name);
    return {fmt::format("Delete layout “{}”?", layout.name), message, "Delete Layout"};
}

DeletionQuestion setupDeletionQuestion(const SetupCard& setup, std::size_t associationCount) {
    std::string message;
    if (setup.layouts.empty()) {
        message = "It has no layouts.";
    } else {
        std::vector<std::string> names;
        for (const LayoutCard& layout : setup.layouts)
            if (names.size() < namedLayouts)
                names.push_back("“" + layout.name + "”");
        const std::size_t others = setup.layouts.size() - names.size();
        message = fmt::format("{} will be lost: {}{}.", counted(setup.layouts.size(), "layout"),
                              fmt::join(names, ", "), others ? fmt::format(" and {} more", others) : "");
    }
    const auto shortcuts = static_cast<std::size_t>(std::ranges::count_if(
        setup.layouts, [](const LayoutCard& layout) { return layout.shortcut.has_value(); }));
    if (shortcuts)
        message += fmt::format(" {} will be removed.", counted(shortcuts, "shortcut"));
    if (associationCount)
        message += fmt::format(" {} will be forgotten.", counted(associationCount, "confirmed recognition"));
    return {fmt::format("Delete display setup “{}”?", setup.name), message, "Delete Setup"};
}

} // namespace tavrin

#include "platform/i3/i3_tree.h"

#include "base/text.h"

#include <fmt/format.h>
#include <simdjson.h>

#include <algorithm>
#include <cmath>
#include <ranges>

namespace tavrin {
namespace {

using Json = simdjson::dom::element;

constexpr std::size_t textLimit = 1024;
constexpr std::size_t windowLimit = 20000;
constexpr int depthLimit = 200;
constexpr double extentLimit = 1e6;

/// An answer, or an event, as read; lives as long as what is taken from it.
class Document {
public:
    explicit Document(const std::string& text) {
        // Titles may hold any bytes.
        isRead_ = simdjson::validate_utf8(text)
                      ? !parser_.parse(text).get(root_)
                      : !parser_.parse(sanitizedUtf8(text, 3 * text.size())).get(root_);
    }

    std::optional<Json> object() const {
        return isRead_ && root_.is_object() ? std::optional(root_) : std::nullopt;
    }
    std::optional<Json> array() const {
        return isRead_ && root_.is_array() ? std::optional(root_) : std::nullopt;
    }

private:
    simdjson::dom::parser parser_;
    Json root_;
    bool isRead_ = false;
};

std::string text(const Json& object, const char* key) {
    std::string_view value;
    return object[key].get(value) ? std::string() : sanitizedUtf8(value, textLimit);
}

std::optional<std::string> filledText(const Json& object, const char* key) {
    auto value = text(object, key);
    return value.empty() ? std::nullopt : std::optional(std::move(value));
}

std::optional<std::int64_t> number(const Json& object, const char* key) {
    std::int64_t value = 0;
    return object[key].get(value) ? std::nullopt : std::optional(value);
}

bool flag(const Json& object, const char* key) {
    bool value = false;
    return !object[key].get(value) && value;
}

Rect rect(const Json& object, const char* key) {
    const auto side = [&](const char* name) {
        double length = 0;
        return object[key][name].get(length) ? 0 : std::clamp(length, -extentLimit, extentLimit);
    };
    return {side("x"), side("y"), side("width"), side("height")};
}

std::vector<Json> children(const Json& node, const char* kind) {
    std::vector<Json> result;
    simdjson::dom::array nodes;
    if (!node[kind].get(nodes))
        for (const auto child : nodes)
            if (child.is_object())
                result.push_back(child);
    return result;
}

/// The children in the order in which they had the focus, the last one first.
std::vector<Json> childrenByFocus(const Json& node) {
    auto result = children(node, "nodes");
    std::vector<std::int64_t> order;
    simdjson::dom::array focus;
    if (!node["focus"].get(focus))
        for (const auto id : focus)
            if (std::int64_t value = 0; !id.get(value))
                order.push_back(value);
    std::ranges::stable_sort(result, {}, [&](const Json& child) {
        return std::ranges::find(order, number(child, "id").value_or(-1)) - order.begin();
    });
    return result;
}

WindowKind kind(const Json& properties) {
    const auto type = text(properties, "window_type");
    if (type == "dialog")
        return WindowKind::dialog;
    return type == "utility" || type == "toolbar" ? WindowKind::floating : WindowKind::standard;
}

class TreeReader {
public:
    explicit TreeReader(I3Tree& tree) : tree_(tree) {}

    /// Where a node is; inherited by what is below it.
    struct Place {
        std::string output;
        std::string workspace;
        bool isWorkspaceShown = false;
        bool isInFloating = false; ///< its parent is a floating container
        bool isFirst = true;       ///< of its output, the part that is shown
    };

    void read(const Json& node, Place place, int depth) {
        const auto type = text(node, "type");
        if (depth > depthLimit || type == "dockarea")
            return;
        if (type == "output") {
            place.output = text(node, "name");
            // Not an output of its own, but where i3 and sway keep the scratchpad.
            if (place.output.starts_with("__"))
                place.output.clear();
            else if (const auto area = rect(node, "rect"); isSaneFrame(area, extentLimit))
                tree_.outputs.emplace(place.output, area);
        } else if (type == "workspace") {
            place.workspace = text(node, "name");
            place.isWorkspaceShown = place.isFirst && !place.output.empty();
            if (place.isWorkspaceShown)
                tree_.workAreas.emplace(place.output, rect(node, "rect"));
        } else if (number(node, "pid") || number(node, "window")) {
            add(node, place, type);
            return;
        }
        Place below = place;
        below.isInFloating = type == "floating_con";
        const bool isAboveWorkspaces = type != "root" && place.workspace.empty();
        // Floating windows are above the others, the last one on top.
        for (const auto& child : children(node, "floating_nodes") | std::views::reverse)
            read(child, below, depth + 1);
        for (const auto& child : childrenByFocus(node)) {
            read(child, below, depth + 1);
            if (isAboveWorkspaces && text(child, "type") != "dockarea")
                below.isFirst = false;
        }
    }

private:
    void add(const Json& node, const Place& place, const std::string& type) {
        const auto id = number(node, "id");
        if (!id || tree_.windows.size() >= windowLimit)
            return;
        I3Window entry{.output = place.output,
                       .workspace = place.workspace,
                       .isFullscreen = number(node, "fullscreen_mode").value_or(0) != 0,
                       .isWorkspaceShown = place.isWorkspaceShown};
        if (const auto window = number(node, "window"); window && std::in_range<std::uint32_t>(*window))
            entry.xWindow = static_cast<std::uint32_t>(*window);
        auto& window = entry.window;
        window.id = *id;
        const auto pid = number(node, "pid");
        if (pid && std::in_range<ProcessID>(*pid) && *pid > 0)
            window.application.pid = static_cast<ProcessID>(*pid);
        window.application.applicationID = filledText(node, "app_id");
        if (Json properties; !node["window_properties"].get(properties)) {
            window.application.instanceName = filledText(properties, "instance");
            window.application.className = filledText(properties, "class");
            window.kind = kind(properties);
        }
        window.title = text(node, "name");
        window.frame = rect(node, "rect");
        const double titleBar = rect(node, "deco_rect").height;
        window.frame.y -= titleBar;
        window.frame.height += titleBar;
        // Not what sway calls visible: a fullscreen window hides nothing, it only covers.
        window.isOnScreen = place.isWorkspaceShown;
        // i3 wraps a floating window into a container, sway calls the window itself floating.
        window.isTiled = pid ? type != "floating_con" : !place.isInFloating;
        if (flag(node, "focused"))
            tree_.focused = *id;
        tree_.windows.push_back(std::move(entry));
    }

    I3Tree& tree_;
};

} // namespace

std::expected<I3Tree, I3Error> readI3Tree(const std::string& answer) {
    const Document document(answer);
    const auto root = document.object();
    if (!root || text(*root, "type") != "root")
        return std::unexpected(I3Error::malformed);
    I3Tree tree;
    TreeReader(tree).read(*root, {}, 0);
    return tree;
}

std::string outputFor(const I3Tree& tree, const Rect& frame) {
    std::string best;
    double bestShare = 0;
    double bestDistance = 0;
    for (const auto& [name, area] : tree.outputs) {
        const double share = overlapArea(area, frame);
        const double x = frame.x + frame.width / 2, y = frame.y + frame.height / 2;
        const double distance = std::hypot(x - std::clamp(x, area.minX(), area.maxX()),
                                           y - std::clamp(y, area.minY(), area.maxY()));
        if (best.empty() || share > bestShare || (share == bestShare && distance < bestDistance)) {
            best = name;
            bestShare = share;
            bestDistance = distance;
        }
    }
    return best;
}

std::optional<std::string> quotedForI3(const std::string& name) {
    // sway knows no escapes within quotes.
    if (name.empty() || name.find_first_of("\"\\\n") != std::string::npos)
        return std::nullopt;
    return '"' + name + '"';
}

std::string moveTiledCommand(const std::string& criterion, const std::string& output) {
    // Beside a floating window that had the focus there, the moved one would become floating too.
    return fmt::format("[{}] move container to output {}, floating disable", criterion,
                       quotedForI3(output).value_or(output));
}

std::optional<std::string> readI3Binding(const std::string& event) {
    const Document document(event);
    const auto root = document.object();
    Json binding;
    if (!root || text(*root, "change") != "run" || (*root)["binding"].get(binding))
        return std::nullopt;
    return filledText(binding, "command");
}

std::string readI3Change(const std::string& event) {
    const Document document(event);
    const auto root = document.object();
    return root ? text(*root, "change") : std::string();
}

std::optional<I3Version> readI3Version(const std::string& answer) {
    const Document document(answer);
    const auto root = document.object();
    if (!root || !number(*root, "major"))
        return std::nullopt;
    const auto variant = text(*root, "variant"); // i3 itself has none
    return I3Version{.name = (variant.empty() ? "i3" : variant) + " " +
                             sanitizedUtf8(text(*root, "human_readable"), 40),
                     .configurationFile = text(*root, "loaded_config_file_name")};
}

std::optional<std::string> readI3Config(const std::string& answer) {
    const Document document(answer);
    const auto root = document.object();
    std::string_view config;
    if (!root || (*root)["config"].get(config))
        return std::nullopt;
    return std::string(config);
}

std::vector<bool> readI3Results(const std::string& answer) {
    const Document document(answer);
    std::vector<bool> results;
    simdjson::dom::array all;
    if (const auto root = document.array(); root && !root->get(all))
        for (const auto result : all)
            results.push_back(flag(result, "success"));
    return results;
}

} // namespace tavrin

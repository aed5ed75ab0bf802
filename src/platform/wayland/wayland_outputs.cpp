#include "platform/wayland/wayland_outputs.h"

#include "base/text.h"
#include "platform/display_identity/edid.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <kde-output-order-v1-client-protocol.h>
#include <wayland-client.h>
#include <xdg-output-unstable-v1-client-protocol.h>

namespace tavrin {
namespace {

constexpr std::size_t outputLimit = 64;
constexpr std::size_t nameLimit = 128;

/// No desktop is larger; greater numbers are errors.
constexpr double extentLimit = 1e6;

bool isSideways(std::int32_t transform) {
    return (transform & 1) != 0; // of the eight transforms those by 90 and 270 degrees
}

} // namespace

/// What the compositor has sent about one output; valid from its "done" on.
struct WaylandOutputs::Head {
    WaylandOutputs* owner = nullptr;
    wl_output* output = nullptr;
    zxdg_output_v1* logical = nullptr;
    WaylandOutput told;
    std::int32_t position[2] = {0, 0}; ///< for compositors without logical outputs
    std::int32_t mode[2] = {0, 0};
    std::int32_t transform = 0;
    std::int32_t integerScale = 1;
    bool hasLogicalSize = false;
    std::optional<WaylandOutput> known;

    ~Head() {
        if (logical)
            zxdg_output_v1_destroy(logical);
        if (output)
            wl_output_get_version(output) >= WL_OUTPUT_RELEASE_SINCE_VERSION ? wl_output_release(output)
                                                                             : wl_output_destroy(output);
    }
};

struct WaylandOutputs::Listeners {
    static Head& head(void* self) { return *static_cast<Head*>(self); }

    static void setName(void* self, const char* name) {
        head(self).told.name = sanitizedUtf8(name, nameLimit);
    }

    static constexpr wl_output_listener output{
        .geometry =
            [](void* self, wl_output*, std::int32_t x, std::int32_t y, std::int32_t, std::int32_t,
               std::int32_t, const char*, const char*, std::int32_t transform) {
                head(self).position[0] = x;
                head(self).position[1] = y;
                head(self).transform = transform;
            },
        .mode =
            [](void* self, wl_output*, std::uint32_t flags, std::int32_t width, std::int32_t height,
               std::int32_t) {
                if ((flags & WL_OUTPUT_MODE_CURRENT) == 0)
                    return;
                head(self).mode[0] = width;
                head(self).mode[1] = height;
            },
        .done = [](void* self, wl_output*) { head(self).owner->commit(head(self)); },
        .scale = [](void* self, wl_output*, std::int32_t scale) { head(self).integerScale = scale; },
        .name = [](void* self, wl_output*, const char* name) { setName(self, name); },
        .description = [](void*, wl_output*, const char*) {},
    };

    static constexpr zxdg_output_v1_listener logical{
        .logical_position =
            [](void* self, zxdg_output_v1*, std::int32_t x, std::int32_t y) {
                head(self).told.frame.x = x;
                head(self).told.frame.y = y;
            },
        .logical_size =
            [](void* self, zxdg_output_v1*, std::int32_t width, std::int32_t height) {
                head(self).told.frame.width = width;
                head(self).told.frame.height = height;
                head(self).hasLogicalSize = true;
            },
        // Older compositors end a description with this, newer ones with that of the output itself.
        .done = [](void* self, zxdg_output_v1*) { head(self).owner->commit(head(self)); },
        .name = [](void* self, zxdg_output_v1*, const char* name) { setName(self, name); },
        .description = [](void*, zxdg_output_v1*, const char*) {},
    };

    static constexpr kde_output_order_v1_listener order{
        .output =
            [](void* self, kde_output_order_v1*, const char* name) {
                auto& next = static_cast<WaylandOutputs*>(self)->nextOrder_;
                if (next.size() < outputLimit)
                    next.push_back(sanitizedUtf8(name, nameLimit));
            },
        .done =
            [](void* self, kde_output_order_v1*) {
                auto& outputs = *static_cast<WaylandOutputs*>(self);
                outputs.order_ = std::exchange(outputs.nextOrder_, {});
                outputs.changed_.emit();
            },
    };
};

WaylandOutputs::WaylandOutputs(WaylandConnection& connection) : connection_(connection) {
    watches_.push_back(connection.watchGlobals("zxdg_output_manager_v1", [this](const auto& global) {
        if (manager_)
            return;
        manager_ = static_cast<zxdg_output_manager_v1*>(
            connection_.bind(global, zxdg_output_manager_v1_interface, 3));
        for (auto& [name, head] : heads_)
            describe(*head);
    }));
    watches_.push_back(connection.watchGlobals("kde_output_order_v1", [this](const auto& global) {
        if (orderObject_)
            return;
        orderObject_ =
            static_cast<kde_output_order_v1*>(connection_.bind(global, kde_output_order_v1_interface, 1));
        kde_output_order_v1_add_listener(orderObject_, &Listeners::order, this);
    }));
    watches_.push_back(connection.watchGlobals(
        wl_output_interface.name, [this](const auto& global) { add(global); },
        [this](std::uint32_t name) { remove(name); }));
    connection.roundTrip();
}

WaylandOutputs::~WaylandOutputs() {
    heads_.clear();
    if (orderObject_)
        kde_output_order_v1_destroy(orderObject_);
    if (manager_)
        zxdg_output_manager_v1_destroy(manager_);
    connection_.flush();
}

void WaylandOutputs::add(const WaylandConnection::Global& global) {
    if (heads_.size() >= outputLimit)
        return;
    auto& head = heads_[global.name] = std::make_unique<Head>();
    head->owner = this;
    head->output = static_cast<wl_output*>(connection_.bind(global, wl_output_interface, 4));
    wl_output_add_listener(head->output, &Listeners::output, head.get());
    describe(*head);
    connection_.flush();
}

void WaylandOutputs::describe(Head& head) {
    if (!manager_ || head.logical)
        return;
    head.logical = zxdg_output_manager_v1_get_xdg_output(manager_, head.output);
    zxdg_output_v1_add_listener(head.logical, &Listeners::logical, &head);
}

void WaylandOutputs::commit(Head& head) {
    auto next = head.told;
    const bool sideways = isSideways(head.transform);
    const auto pixels = [&](int side) {
        return static_cast<std::uint32_t>(std::max(head.mode[sideways ? 1 - side : side], 0));
    };
    next.pixelsWide = pixels(0);
    next.pixelsHigh = pixels(1);
    if (!head.hasLogicalSize) {
        if (manager_)
            return; // the description is still on its way
        const double scale = std::max(head.integerScale, 1);
        next.frame = {double(head.position[0]), double(head.position[1]), next.pixelsWide / scale,
                      next.pixelsHigh / scale};
    }
    if (!isSaneFrame(next.frame, extentLimit))
        return;
    next.scale = next.pixelsWide > 0 ? next.pixelsWide / next.frame.width : 1;
    if (head.known == next)
        return;
    head.known = std::move(next);
    changed_.emit();
}

void WaylandOutputs::remove(std::uint32_t name) {
    if (heads_.erase(name) > 0)
        changed_.emit();
}

std::vector<WaylandOutput> WaylandOutputs::outputs() const {
    std::vector<WaylandOutput> outputs;
    for (const auto& [number, head] : heads_)
        if (head->known)
            outputs.push_back(*head->known);
    return outputs;
}

std::optional<std::string> WaylandOutputs::primary() const {
    const auto all = outputs();
    for (const auto& name : order_)
        if (std::ranges::find(all, name, &WaylandOutput::name) != all.end())
            return name;
    if (all.empty())
        return std::nullopt;
    const auto atOrigin = std::ranges::find_if(
        all, [](const WaylandOutput& output) { return output.frame.x == 0 && output.frame.y == 0; });
    return (atOrigin == all.end() ? all.front() : *atOrigin).name;
}

std::optional<Rect> WaylandOutputs::primaryFrame() const {
    const auto name = primary();
    for (const auto& output : outputs())
        if (output.name == name)
            return output.frame;
    return std::nullopt;
}

DisplayHardware outputHardware(const WaylandOutput& output, const std::filesystem::path& systemRoot) {
    EdidIdentity identity{.product = connectorNumber(output.name)};
    std::error_code error;
    const auto suffix = "-" + output.name;
    for (const auto& entry : std::filesystem::directory_iterator(systemRoot / "class/drm", error)) {
        // A folder for each connector, named after its graphics card, such as "card0-DP-1".
        const auto folder = entry.path().filename().string();
        if (!folder.starts_with("card") || folder.find('-') != folder.size() - suffix.size() ||
            !folder.ends_with(suffix))
            continue;
        std::array<std::uint8_t, 128> block{};
        std::ifstream file(entry.path() / "edid", std::ios::binary);
        file.read(reinterpret_cast<char*>(block.data()), block.size());
        if (const auto told = edidIdentity({block.data(), static_cast<std::size_t>(file.gcount())})) {
            identity = *told;
            break;
        }
    }
    return {.vendorNumber = identity.manufacturer,
            .modelNumber = identity.product,
            .serialNumber = identity.serial,
            .isBuiltin = isBuiltinConnector(output.name),
            .pixelsWide = output.pixelsWide,
            .pixelsHigh = output.pixelsHigh};
}

} // namespace tavrin

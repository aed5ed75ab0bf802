#pragma once

#include "base/geometry.h"
#include "platform/wayland/wayland_connection.h"
#include "ports/screen_list.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct kde_output_order_v1;
struct zxdg_output_manager_v1;

namespace tavrin {

/// An output that is on.
struct WaylandOutput {
    std::string name; ///< of the connector, for example "DP-1"
    Rect frame;       ///< points (logical pixels), origin at the top left of the compositor's whole desktop
    double scale = 1; ///< pixels per point
    std::uint32_t pixelsWide = 0; ///< of its mode, turned as the output is
    std::uint32_t pixelsHigh = 0;

    bool operator==(const WaylandOutput&) const = default;
};

/// The outputs as the compositor tells every client of them.
class WaylandOutputs {
public:
    /// The connection must outlive this.
    explicit WaylandOutputs(WaylandConnection& connection);
    ~WaylandOutputs();
    WaylandOutputs(const WaylandOutputs&) = delete;
    WaylandOutputs& operator=(const WaylandOutputs&) = delete;

    /// In the order in which they came.
    std::vector<WaylandOutput> outputs() const;

    /// The names in the user's order, the primary one first; empty where the compositor has no such order.
    const std::vector<std::string>& order() const { return order_; }

    /// The primary output: the first in the user's order, else the one at the origin, else the first. Absent
    /// without outputs.
    std::optional<std::string> primary() const;
    std::optional<Rect> primaryFrame() const;

    /// An output came, went or changed, or the order did. Bursts are not merged.
    Token observeChanges(std::function<void()> handler) { return changed_.connect(std::move(handler)); }

private:
    struct Head;
    struct Listeners;

    void add(const WaylandConnection::Global& global);
    void remove(std::uint32_t name);
    void describe(Head& head);
    void commit(Head& head);

    WaylandConnection& connection_;
    Signal<> changed_;
    zxdg_output_manager_v1* manager_ = nullptr;
    kde_output_order_v1* orderObject_ = nullptr;
    std::map<std::uint32_t, std::unique_ptr<Head>> heads_; ///< by the global's number
    std::vector<std::string> order_;
    std::vector<std::string> nextOrder_;
    std::vector<Token> watches_;
};

/// What is known of the hardware behind an output: the numbers of its display's data block in the kernel's
/// folder `systemRoot`/class/drm, as X11 reports them. An output without such a file is identified by its
/// connector.
DisplayHardware outputHardware(const WaylandOutput& output, const std::filesystem::path& systemRoot);

} // namespace tavrin

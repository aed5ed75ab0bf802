#include "platform/wayland/wayland_connection.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <poll.h>
#include <wayland-client.h>

namespace tavrin {
namespace {

/// More than any compositor offers; the rest is not remembered.
constexpr std::size_t globalLimit = 1024;

using Clock = std::chrono::steady_clock;

} // namespace

struct WaylandConnection::Listener {
    static constexpr wl_registry_listener registry{
        .global =
            [](void* self, wl_registry*, std::uint32_t name, const char* interface, std::uint32_t version) {
                static_cast<WaylandConnection*>(self)->announce(name, interface, version);
            },
        .global_remove = [](void* self, wl_registry*,
                            std::uint32_t name) { static_cast<WaylandConnection*>(self)->withdraw(name); },
    };
};

bool WaylandConnection::isReachable() {
    auto* display = wl_display_connect(nullptr);
    if (display)
        wl_display_disconnect(display);
    return display != nullptr;
}

std::expected<std::unique_ptr<WaylandConnection>, std::string>
WaylandConnection::open(EventLoop& eventLoop, const std::string& displayName) {
    auto* display = wl_display_connect(displayName.empty() ? nullptr : displayName.c_str());
    if (!display)
        return std::unexpected(fmt::format("cannot connect to the Wayland compositor{}: {}",
                                           displayName.empty() ? "" : " \"" + displayName + "\"",
                                           std::strerror(errno)));
    std::unique_ptr<WaylandConnection> connection(new WaylandConnection(display));
    if (!connection->roundTrip(Seconds{2}))
        return std::unexpected("the Wayland compositor does not answer");
    connection->watch_ =
        eventLoop.watchReadable(wl_display_get_fd(display), [self = connection.get()] { self->dispatch(); });
    return connection;
}

WaylandConnection::WaylandConnection(wl_display* display)
    : display_(display), registry_(wl_display_get_registry(display)) {
    wl_registry_add_listener(registry_, &Listener::registry, this);
}

WaylandConnection::~WaylandConnection() {
    watch_.release();
    wl_registry_destroy(registry_);
    wl_display_disconnect(display_);
}

void WaylandConnection::announce(std::uint32_t name, const char* interface, std::uint32_t version) {
    if (globals_.size() >= globalLimit)
        return;
    const auto entry = globals_[name] = {interface, {name, version}};
    appeared_.emit(entry.first, entry.second);
}

void WaylandConnection::withdraw(std::uint32_t name) {
    const auto found = globals_.find(name);
    if (found == globals_.end())
        return;
    const auto interface = found->second.first;
    globals_.erase(found);
    vanished_.emit(interface, name);
}

Token WaylandConnection::watchGlobals(const std::string& interface,
                                      std::function<void(const Global&)> appeared,
                                      std::function<void(std::uint32_t)> vanished) {
    for (const auto& [name, entry] : globals_)
        if (entry.first == interface)
            appeared(entry.second);
    auto arrivals = appeared_.connect(
        [interface, appeared = std::move(appeared)](const std::string& other, const Global& global) {
            if (other == interface)
                appeared(global);
        });
    if (!vanished)
        return arrivals;
    auto departures = vanished_.connect(
        [interface, vanished = std::move(vanished)](const std::string& other, std::uint32_t name) {
            if (other == interface)
                vanished(name);
        });
    return Token([arrivals = std::move(arrivals), departures = std::move(departures)]() mutable {
        arrivals.release();
        departures.release();
    });
}

void* WaylandConnection::bind(const Global& global, const wl_interface& interface, std::uint32_t version) {
    return wl_registry_bind(registry_, global.name, &interface, std::min(version, global.version));
}

bool WaylandConnection::isBroken() const {
    return wl_display_get_error(display_) != 0;
}

void WaylandConnection::flush() {
    // The requests of this program are few and small: what does not fit now goes out with the next ones.
    wl_display_flush(display_);
}

bool WaylandConnection::readWithin(Seconds limit) {
    if (wl_display_prepare_read(display_) != 0)
        return wl_display_dispatch_pending(display_) >= 0; // events are waiting already
    wl_display_flush(display_);
    pollfd readable{.fd = wl_display_get_fd(display_), .events = POLLIN, .revents = 0};
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(limit).count();
    const int ready = ::poll(&readable, 1, static_cast<int>(std::max<long>(milliseconds, 0)));
    if (ready <= 0) {
        const bool isInterrupted = ready < 0 && errno == EINTR;
        wl_display_cancel_read(display_);
        return isInterrupted;
    }
    return wl_display_read_events(display_) == 0 && wl_display_dispatch_pending(display_) >= 0;
}

bool WaylandConnection::roundTrip(Seconds limit) {
    static constexpr wl_callback_listener listener{
        .done = [](void* isDone, wl_callback*, std::uint32_t) { *static_cast<bool*>(isDone) = true; }};
    bool isDone = false;
    auto* callback = wl_display_sync(display_);
    wl_callback_add_listener(callback, &listener, &isDone);
    const auto deadline = Clock::now() + limit;
    while (!isDone && Clock::now() < deadline)
        if (!readWithin(deadline - Clock::now()))
            break;
    wl_callback_destroy(callback);
    return isDone;
}

void WaylandConnection::dispatch() {
    readWithin(Seconds{0});
    wl_display_flush(display_);
    if (isBroken() && watch_) {
        watch_.release();
        lost_.emit();
    }
}

} // namespace tavrin

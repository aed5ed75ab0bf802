#include "platform/freedesktop/bus_addresses.h"

#include <fmt/format.h>

#include <filesystem>

namespace tavrin {
namespace {

std::string socketAddress(const std::string& path) {
    constexpr std::string_view plain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_/.\\*";
    std::string address = "unix:path=";
    for (const char c : path)
        address += plain.find(c) != std::string_view::npos
                       ? std::string(1, c)
                       : fmt::format("%{:02x}", static_cast<unsigned char>(c));
    return address;
}

} // namespace

BusAddresses busAddresses(const Environment& environment) {
    BusAddresses addresses{nonEmpty(environment, "DBUS_SESSION_BUS_ADDRESS"),
                           nonEmpty(environment, "DBUS_SYSTEM_BUS_ADDRESS")};
    if (!addresses.session)
        if (const auto directory = nonEmpty(environment, "XDG_RUNTIME_DIR")) {
            std::error_code error;
            if (std::filesystem::is_socket(*directory + "/bus", error))
                addresses.session = socketAddress(*directory + "/bus");
        }
    if (!addresses.system)
        addresses.system = socketAddress("/run/dbus/system_bus_socket");
    return addresses;
}

} // namespace tavrin

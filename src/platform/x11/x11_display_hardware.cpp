#include "platform/x11/x11_display_hardware.h"

#include "platform/display_identity/edid.h"
#include "platform/x11/x11_reply.h"

#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace tavrin {
namespace {

constexpr std::uint32_t edidWords = 128 / 4;

struct PixelSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

struct OutputFacts {
    std::string connector;
    std::optional<EdidIdentity> identity;
    bool isPanel = false;
    xcb_randr_crtc_t crtc = XCB_NONE;
    std::optional<PixelSize> pixels;
};

struct OutputRequests {
    xcb_randr_get_output_info_cookie_t info{};
    xcb_randr_get_output_property_cookie_t edid{};
    xcb_randr_get_output_property_cookie_t connectorType{};
};

struct CrtcRequests {
    xcb_randr_get_crtc_info_cookie_t info{};
    xcb_randr_get_crtc_transform_cookie_t transform{};
};

using Outputs = std::map<xcb_randr_output_t, OutputFacts>;
using Modes = std::map<xcb_randr_mode_t, PixelSize>;

bool isIdentity(const xcb_render_transform_t& matrix) {
    static constexpr xcb_render_fixed_t one = 1 << 16;
    static constexpr xcb_render_transform_t identity = {one, 0, 0, 0, one, 0, 0, 0, one};
    return std::memcmp(&matrix, &identity, sizeof identity) == 0;
}

OutputFacts collectOutput(X11Connection& server, const OutputRequests& requests) {
    auto* connection = server.get();
    const auto info = owned(xcb_randr_get_output_info_reply(connection, requests.info, nullptr));
    const auto edid = owned(xcb_randr_get_output_property_reply(connection, requests.edid, nullptr));
    const auto connectorType =
        owned(xcb_randr_get_output_property_reply(connection, requests.connectorType, nullptr));
    OutputFacts facts;
    if (info) {
        facts.connector.assign(reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                               static_cast<std::size_t>(xcb_randr_get_output_info_name_length(info.get())));
        facts.crtc = info->crtc;
    }
    if (edid && edid->format == 8)
        facts.identity =
            edidIdentity({xcb_randr_get_output_property_data(edid.get()),
                          static_cast<std::size_t>(xcb_randr_get_output_property_data_length(edid.get()))});
    if (connectorType && connectorType->format == 32 &&
        xcb_randr_get_output_property_data_length(connectorType.get()) >= 4) {
        xcb_atom_t type = XCB_ATOM_NONE;
        std::memcpy(&type, xcb_randr_get_output_property_data(connectorType.get()), sizeof type);
        facts.isPanel = type == server.atoms().panel;
    }
    return facts;
}

/// The mode's size as it lies on the desktop: turned, and enlarged or reduced by a transformation.
std::optional<PixelSize> collectCrtc(X11Connection& server, const CrtcRequests& requests,
                                     const Modes& modes) {
    const auto info = owned(xcb_randr_get_crtc_info_reply(server.get(), requests.info, nullptr));
    const auto transform =
        owned(xcb_randr_get_crtc_transform_reply(server.get(), requests.transform, nullptr));
    if (!info)
        return std::nullopt;
    const auto mode = modes.find(info->mode);
    if (mode == modes.end())
        return std::nullopt;
    // The server applies the transformation itself; only the area it reports for panning is no mode size.
    if (transform && !isIdentity(transform->current_transform))
        return PixelSize{info->width, info->height};
    const bool isSideways =
        (info->rotation & (XCB_RANDR_ROTATION_ROTATE_90 | XCB_RANDR_ROTATION_ROTATE_270)) != 0;
    return isSideways ? PixelSize{mode->second.height, mode->second.width} : mode->second;
}

Outputs readOutputs(X11Connection& server, std::span<const X11Monitor> monitors) {
    auto* connection = server.get();
    std::map<xcb_randr_output_t, OutputRequests> outputRequests;
    for (const auto& monitor : monitors)
        for (const auto output : monitor.outputs)
            outputRequests.try_emplace(output);
    if (outputRequests.empty())
        return {};
    const auto resourcesCookie = xcb_randr_get_screen_resources_current(connection, server.root());
    for (auto& [output, requests] : outputRequests) {
        const auto property = [&](xcb_atom_t atom, std::uint32_t words) {
            return xcb_randr_get_output_property(connection, output, atom, XCB_ATOM_ANY, 0, words, 0, 0);
        };
        requests = {xcb_randr_get_output_info(connection, output, XCB_CURRENT_TIME),
                    property(server.atoms().edid, edidWords), property(server.atoms().connectorType, 1)};
    }
    Modes modes;
    if (const auto resources =
            owned(xcb_randr_get_screen_resources_current_reply(connection, resourcesCookie, nullptr)))
        for (auto mode = xcb_randr_get_screen_resources_current_modes_iterator(resources.get()); mode.rem > 0;
             xcb_randr_mode_info_next(&mode))
            modes[mode.data->id] = {mode.data->width, mode.data->height};

    Outputs outputs;
    std::map<xcb_randr_crtc_t, CrtcRequests> crtcRequests;
    for (const auto& [output, requests] : outputRequests) {
        const auto& facts = outputs[output] = collectOutput(server, requests);
        if (facts.crtc != XCB_NONE && !crtcRequests.contains(facts.crtc))
            crtcRequests[facts.crtc] = {xcb_randr_get_crtc_info(connection, facts.crtc, XCB_CURRENT_TIME),
                                        xcb_randr_get_crtc_transform(connection, facts.crtc)};
    }
    for (const auto& [crtc, requests] : crtcRequests) {
        const auto pixels = collectCrtc(server, requests, modes);
        for (auto& [output, facts] : outputs)
            if (facts.crtc == crtc)
                facts.pixels = pixels;
    }
    return outputs;
}

} // namespace

std::vector<std::vector<DisplayHardware>> readDisplayHardware(X11Connection& server,
                                                              std::span<const X11Monitor> monitors) {
    const auto outputs = readOutputs(server, monitors);
    std::vector<std::vector<DisplayHardware>> hardware;
    for (const auto& monitor : monitors) {
        const PixelSize area{static_cast<std::uint32_t>(monitor.area.width),
                             static_cast<std::uint32_t>(monitor.area.height)};
        auto& ofMonitor = hardware.emplace_back();
        for (const auto number : monitor.outputs) {
            const auto& output = outputs.at(number);
            const auto identity =
                output.identity.value_or(EdidIdentity{.product = connectorNumber(output.connector)});
            const auto pixels = monitor.outputs.size() == 1 ? output.pixels.value_or(area) : area;
            ofMonitor.push_back({.vendorNumber = identity.manufacturer,
                                 .modelNumber = identity.product,
                                 .serialNumber = identity.serial,
                                 .isBuiltin = output.isPanel || isBuiltinConnector(output.connector),
                                 .pixelsWide = pixels.width,
                                 .pixelsHigh = pixels.height});
        }
    }
    return hardware;
}

} // namespace tavrin

#include "platform/x11/x11_atoms.h"

#include "platform/x11/x11_connection.h"

#include <array>
#include <string_view>

namespace tavrin {
namespace {

struct Entry {
    std::string_view name;
    xcb_atom_t X11Atoms::* member;
};

constexpr std::array entries = {
    Entry{"UTF8_STRING", &X11Atoms::utf8String},
    Entry{"COMPOUND_TEXT", &X11Atoms::compoundText},
    Entry{"EDID", &X11Atoms::edid},
    Entry{"ConnectorType", &X11Atoms::connectorType},
    Entry{"Panel", &X11Atoms::panel},
    Entry{"WM_STATE", &X11Atoms::wmState},
    Entry{"_NET_SUPPORTED", &X11Atoms::netSupported},
    Entry{"_NET_SUPPORTING_WM_CHECK", &X11Atoms::netSupportingWmCheck},
    Entry{"_NET_CLIENT_LIST_STACKING", &X11Atoms::netClientListStacking},
    Entry{"_NET_CURRENT_DESKTOP", &X11Atoms::netCurrentDesktop},
    Entry{"_NET_ACTIVE_WINDOW", &X11Atoms::netActiveWindow},
    Entry{"_NET_WORKAREA", &X11Atoms::netWorkarea},
    Entry{"_NET_MOVERESIZE_WINDOW", &X11Atoms::netMoveresizeWindow},
    Entry{"_NET_WM_NAME", &X11Atoms::netWmName},
    Entry{"_NET_WM_DESKTOP", &X11Atoms::netWmDesktop},
    Entry{"_NET_WM_PID", &X11Atoms::netWmPid},
    Entry{"_NET_FRAME_EXTENTS", &X11Atoms::netFrameExtents},
    Entry{"_NET_WM_STRUT", &X11Atoms::netWmStrut},
    Entry{"_NET_WM_STRUT_PARTIAL", &X11Atoms::netWmStrutPartial},
    Entry{"_GTK_WORKAREAS", &X11Atoms::gtkWorkareas},
    Entry{"_GTK_FRAME_EXTENTS", &X11Atoms::gtkFrameExtents},
    Entry{"_GTK_APPLICATION_ID", &X11Atoms::gtkApplicationId},
    Entry{"_NET_WM_STATE", &X11Atoms::netWmState},
    Entry{"_NET_WM_STATE_HIDDEN", &X11Atoms::netWmStateHidden},
    Entry{"_NET_WM_STATE_FULLSCREEN", &X11Atoms::netWmStateFullscreen},
    Entry{"_NET_WM_STATE_MAXIMIZED_HORZ", &X11Atoms::netWmStateMaximizedHorz},
    Entry{"_NET_WM_STATE_MAXIMIZED_VERT", &X11Atoms::netWmStateMaximizedVert},
    Entry{"_NET_WM_STATE_SHADED", &X11Atoms::netWmStateShaded},
    Entry{"_NET_WM_WINDOW_TYPE", &X11Atoms::netWmWindowType},
    Entry{"_NET_WM_WINDOW_TYPE_NORMAL", &X11Atoms::typeNormal},
    Entry{"_NET_WM_WINDOW_TYPE_DIALOG", &X11Atoms::typeDialog},
    Entry{"_NET_WM_WINDOW_TYPE_UTILITY", &X11Atoms::typeUtility},
    Entry{"_NET_WM_WINDOW_TYPE_TOOLBAR", &X11Atoms::typeToolbar},
    Entry{"_NET_WM_WINDOW_TYPE_DESKTOP", &X11Atoms::typeDesktop},
    Entry{"_NET_WM_WINDOW_TYPE_DOCK", &X11Atoms::typeDock},
    Entry{"_NET_WM_WINDOW_TYPE_SPLASH", &X11Atoms::typeSplash},
    Entry{"_NET_WM_WINDOW_TYPE_NOTIFICATION", &X11Atoms::typeNotification},
    Entry{"_NET_WM_WINDOW_TYPE_TOOLTIP", &X11Atoms::typeTooltip},
    Entry{"_NET_WM_WINDOW_TYPE_MENU", &X11Atoms::typeMenu},
    Entry{"_NET_WM_WINDOW_TYPE_DROPDOWN_MENU", &X11Atoms::typeDropdownMenu},
    Entry{"_NET_WM_WINDOW_TYPE_POPUP_MENU", &X11Atoms::typePopupMenu},
    Entry{"_NET_WM_WINDOW_TYPE_COMBO", &X11Atoms::typeCombo},
    Entry{"_NET_WM_WINDOW_TYPE_DND", &X11Atoms::typeDnd},
};

} // namespace

std::optional<X11Atoms> X11Atoms::intern(xcb_connection_t* connection) {
    std::array<xcb_intern_atom_cookie_t, entries.size()> cookies;
    for (std::size_t i = 0; i < entries.size(); ++i)
        cookies[i] = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(entries[i].name.size()),
                                     entries[i].name.data());
    X11Atoms atoms;
    bool isComplete = true;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const auto reply = owned(xcb_intern_atom_reply(connection, cookies[i], nullptr));
        if (reply)
            atoms.*entries[i].member = reply->atom;
        else
            isComplete = false;
    }
    return isComplete ? std::optional(atoms) : std::nullopt;
}

} // namespace tavrin

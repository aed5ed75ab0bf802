#pragma once

#include <xcb/xcb.h>

#include <optional>

namespace tavrin {

/// The names this layer uses, as the server numbers them.
struct X11Atoms {
    xcb_atom_t utf8String = 0;
    xcb_atom_t compoundText = 0;
    xcb_atom_t edid = 0;
    xcb_atom_t connectorType = 0;
    xcb_atom_t panel = 0;
    xcb_atom_t wmState = 0;

    xcb_atom_t netSupported = 0;
    xcb_atom_t netSupportingWmCheck = 0;
    xcb_atom_t netClientListStacking = 0;
    xcb_atom_t netCurrentDesktop = 0;
    xcb_atom_t netActiveWindow = 0;
    xcb_atom_t netWorkarea = 0;
    xcb_atom_t netMoveresizeWindow = 0;

    xcb_atom_t netWmName = 0;
    xcb_atom_t netWmDesktop = 0;
    xcb_atom_t netWmPid = 0;
    xcb_atom_t netFrameExtents = 0;
    xcb_atom_t netWmStrut = 0;
    xcb_atom_t netWmStrutPartial = 0;
    xcb_atom_t gtkWorkareas = 0;
    xcb_atom_t gtkFrameExtents = 0;
    xcb_atom_t gtkApplicationId = 0;

    xcb_atom_t netWmState = 0;
    xcb_atom_t netWmStateHidden = 0;
    xcb_atom_t netWmStateFullscreen = 0;
    xcb_atom_t netWmStateMaximizedHorz = 0;
    xcb_atom_t netWmStateMaximizedVert = 0;
    xcb_atom_t netWmStateShaded = 0;

    xcb_atom_t netWmWindowType = 0;
    xcb_atom_t typeNormal = 0;
    xcb_atom_t typeDialog = 0;
    xcb_atom_t typeUtility = 0;
    xcb_atom_t typeToolbar = 0;
    xcb_atom_t typeDesktop = 0;
    xcb_atom_t typeDock = 0;
    xcb_atom_t typeSplash = 0;
    xcb_atom_t typeNotification = 0;
    xcb_atom_t typeTooltip = 0;
    xcb_atom_t typeMenu = 0;
    xcb_atom_t typeDropdownMenu = 0;
    xcb_atom_t typePopupMenu = 0;
    xcb_atom_t typeCombo = 0;
    xcb_atom_t typeDnd = 0;

    /// All of them in one round trip; absent when the connection broke.
    static std::optional<X11Atoms> intern(xcb_connection_t* connection);
};

} // namespace tavrin

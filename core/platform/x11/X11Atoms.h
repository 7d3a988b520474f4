#pragma once

#include <xcb/xcb.h>

namespace lumnara {

/// The atoms that the room uses, interned once for each connection.
struct X11Atoms {
    xcb_atom_t utf8String;
    xcb_atom_t netSupportingWmCheck;
    xcb_atom_t netWmName;
    xcb_atom_t netNumberOfDesktops;
    xcb_atom_t netCurrentDesktop;
    xcb_atom_t netDesktopNames;
    xcb_atom_t netClientList;
    xcb_atom_t netWmDesktop;
    xcb_atom_t netActiveWindow;
    xcb_atom_t netWmPid;
    xcb_atom_t lumnaraDesktopUuids;
    xcb_atom_t i3SocketPath;
    xcb_atom_t edid;
};

} // namespace lumnara

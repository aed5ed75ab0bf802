# The Debian package. scripts/package builds it and checks the result.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tavrin)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "The Tavrin developers")
set(CPACK_PACKAGE_CONTACT "The Tavrin developers <developers@tavrin.org>")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR})
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

# Files of the package lie where they will lie on the user's system, so the prefix has to be that one.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/debian/prepare_staging.cmake)

set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION x11)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${TAVRIN_HOMEPAGE}")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What lets Qt draw in a Wayland session; no library names it.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-wayland")
# Without a session bus some panels show no icon; without xdg-open the data folder cannot be opened.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "default-dbus-session-bus | dbus-session-bus, xdg-utils")
# With it the windows follow the dark style of desktops that are not KDE.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "qt6-gtk-platformtheme")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"save the arrangement of windows and put them back
Tavrin sits in the status bar and remembers where windows belong. It
recognises which monitors are connected, saves the arrangement of the
windows as a named layout for that display setup, and puts the windows
back: from its menu, by a global shortcut, or by itself after a monitor
was plugged or unplugged, after wake and after unlock.
.
It only moves windows that are open; it never starts or closes an
application. It needs an X11 session with a window manager that follows
the EWMH standard, or a Wayland session with KDE Plasma, sway, or GNOME,
whose extension for it is part of this package.")

include(CPack)

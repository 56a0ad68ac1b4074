# The Debian package (make package): everything `cmake --install` puts in
# place, under /usr, with the dependencies dpkg-shlibdeps finds in the
# programs themselves.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillon)
set(CPACK_PACKAGE_VENDOR "The Quillon developers")
set(CPACK_PACKAGE_CONTACT "The Quillon developers <feedback@quillon.app>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "launcher in the panel for settings, applications and scripts")
set(CPACK_PACKAGE_DESCRIPTION
    "Quillon puts one icon in the desktop's panel. Its menu reaches the System\n"
    "Settings panels and their pages, installed applications, folders you add,\n"
    "your own scripts and recent items, and menus you compose from all of these.\n"
    "A search field tops the menu. A floating search panel opens on a global\n"
    "hot key, and a second one pops the menu up at the mouse.\n"
    "\n"
    "It works on GNOME and KDE Plasma, on X11 and Wayland.")
# The pieces above are a list; joined, with no separator, they are the text.
string(REPLACE ";" "" CPACK_PACKAGE_DESCRIPTION "${CPACK_PACKAGE_DESCRIPTION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://quillon.app)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The SVG icon engine and the Wayland platform are plugins, which no
# library dependency names; a session bus and the desktop's settings
# program are what the menu talks to.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland, default-dbus-session-bus | dbus-session-bus")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "gnome-control-center | systemsettings")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

include(CPack)

# The Debian package, made by `cpack -G DEB` in a build folder:
# lanternbud_<version>_amd64.deb, installing under /usr.
set(LANTERNBUD_PACKAGE_MAINTAINER "The Lanternbud developers <developers@lanternbud.org>" CACHE STRING
    "The Maintainer field of the Debian package")

set(docdir ${CMAKE_INSTALL_DATADIR}/doc/lanternbud)
install(FILES ${CMAKE_CURRENT_LIST_DIR}/copyright DESTINATION ${docdir})
install(FILES ${CMAKE_CURRENT_LIST_DIR}/lanternbud.lintian-overrides
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME lanternbud)

# Debian wants a changelog in every package; this one names the release.
string(TIMESTAMP LANTERNBUD_RELEASE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog.Debian.in ${CMAKE_BINARY_DIR}/packaging/changelog.Debian @ONLY)
add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/packaging/changelog.Debian.gz
  COMMAND gzip -9nkf ${CMAKE_BINARY_DIR}/packaging/changelog.Debian
  DEPENDS ${CMAKE_BINARY_DIR}/packaging/changelog.Debian VERBATIM)
add_custom_target(lanternbud_changelog ALL DEPENDS ${CMAKE_BINARY_DIR}/packaging/changelog.Debian.gz)
# A version without a Debian revision makes a native package, whose
# changelog Debian names changelog.gz.
install(FILES ${CMAKE_BINARY_DIR}/packaging/changelog.Debian.gz DESTINATION ${docdir} RENAME changelog.gz)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lanternbud)
set(CPACK_PACKAGE_VENDOR "The Lanternbud developers")
set(CPACK_PACKAGE_CONTACT "${LANTERNBUD_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Bluetooth devices in the tray, connected with a click")
# Lines as the control file keeps them; CPack indents each.
string(CONCAT CPACK_PACKAGE_DESCRIPTION
  "Lanternbud puts one tray icon on the desktop for every paired Bluetooth\n"
  "device: headphones, earbuds, speakers, mice, keyboards, controllers. A\n"
  "click connects or disconnects it, and a headset that connects becomes the\n"
  "sound output. Icons show the connection, the sound output and battery\n"
  "levels. Per device, scripts run on connect and disconnect, and a global\n"
  "shortcut connects it. lanternbud-ctl drives it from scripts.")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
# The D-Bus service file and the links are made when installing, from the
# prefix and DESTDIR; without DESTDIR, cpack would hand them its staging
# folder as the prefix.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The libraries come from the binaries; these are the services Lanternbud
# talks to: BlueZ always, UPower for batteries, a sound server that speaks
# PulseAudio's protocol; Qt's own texts (standard buttons) in the user's language;
# Qt's Wayland platform, without which the program cannot be a Wayland client.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "bluez")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "pulseaudio | pipewire-pulse, upower, qt6-translations-l10n, qt6-wayland")
include(CPack)

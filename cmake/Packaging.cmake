# What `make install` adds beside the two programs (installed by their folders), and the
# Debian package (`make package`).

install(FILES ${PROJECT_SOURCE_DIR}/resources/app.vinora.vinora.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

# The manual page of vinora-cli, written from the built tool's own help texts.
set(VINORA_MANPAGE ${CMAKE_BINARY_DIR}/vinora-cli.1)
add_custom_command(
  OUTPUT ${VINORA_MANPAGE}
  COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=0 QT_QPA_PLATFORM=offscreen
          bash ${PROJECT_SOURCE_DIR}/scripts/make-manpage.sh $<TARGET_FILE:vinora-cli> ${VINORA_MANPAGE}
  DEPENDS vinora-cli ${PROJECT_SOURCE_DIR}/scripts/make-manpage.sh
  COMMENT "Writing the manual page of vinora-cli"
  VERBATIM)
add_custom_target(manpage ALL DEPENDS ${VINORA_MANPAGE})
install(FILES ${VINORA_MANPAGE} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vinora)
set(CPACK_PACKAGE_VENDOR "The vinora developers")
set(CPACK_PACKAGE_CONTACT "${VINORA_SUPPORT_ADDRESS}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "catalogue of audio CDs, data CDs and DVDs")
set(CPACK_PACKAGE_DESCRIPTION
    "vinora keeps a personal catalogue of optical discs: sets of audio CDs, data CDs and DVDs with "
    "their track lists and file trees. It recognises the disc in the drive, asks CDDB servers for "
    "album titles, keeps a ledger of lent discs and searches every list. vinora-cli does the same "
    "for scripts.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${VINORA_HOMEPAGE}")
# The shared libraries come from dpkg-shlibdeps; the Qt plugins loaded at run time it
# cannot see: the platform plugins, SQLite for the databases, SVG for the icons.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, libqt6sql6-sqlite, libqt6svg6")
# xdg-utils: a file of a disc, or its folder, is opened with the desktop's program through xdg-open.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-gtk-platformtheme, qt6-translations-l10n, xdg-utils")
set(CPACK_STRIP_FILES ON)
include(CPack)

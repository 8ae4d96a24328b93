# What `cmake --install` puts in place, and the Debian package CPack makes of
# it (`cpack -G DEB` in the build folder). The program finds its catalogue in
# ../share/kelvaris beside bin/, so these folders are fixed rather than taken
# from GNUInstallDirs.
set(KELVARIS_APP_ID io.github.kelvaris.Kelvaris)
set(KELVARIS_DESKTOP_FILES ${PROJECT_SOURCE_DIR}/data/desktop)

install(TARGETS kelvaris RUNTIME DESTINATION bin)
# The window and the command line, which the program loads from
# ../lib/kelvaris beside bin/.
install(TARGETS kelvaris_front_ends LIBRARY DESTINATION lib/kelvaris)
install(FILES ${PROJECT_SOURCE_DIR}/data/kelvaris.csv DESTINATION share/kelvaris)
install(FILES ${KELVARIS_DESKTOP_FILES}/${KELVARIS_APP_ID}.desktop
    DESTINATION share/applications)
install(FILES ${KELVARIS_DESKTOP_FILES}/${KELVARIS_APP_ID}.metainfo.xml
    DESTINATION share/metainfo)
install(FILES ${KELVARIS_DESKTOP_FILES}/${KELVARIS_APP_ID}.svg
    DESTINATION share/icons/hicolor/scalable/apps)
install(FILES ${KELVARIS_DESKTOP_FILES}/kelvaris.1 DESTINATION share/man/man1)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kelvaris)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "The Kelvaris developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "Change the screens, textures and music of City of Heroes")
set(CPACK_PACKAGE_DESCRIPTION
    "Kelvaris replaces the login and character-selection backgrounds, interface textures and music of City of Heroes, including a copy run under Wine, Lutris, Bottles, Steam or Heroic, and can install a random background at every game start.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(KELVARIS_MAINTAINER "The Kelvaris developers <kelvaris@localhost>" CACHE STRING
    "The Maintainer line of the Debian package")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${KELVARIS_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SECTION games)
# The linked libraries (Qt, FFmpeg, the C++ runtime) are found by dpkg-shlibdeps;
# what is started or loaded at run time is listed by hand: the texture
# compressor and the TGA reader are needed, the rest adds what it names (the
# window icon, the chat client's Wine, the Ogg Vorbis encoder for music).
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libnvtt-bin, qt6-image-formats-plugins")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libqt6svg6, wine, libogg0, libvorbisenc2")
include(CPack)

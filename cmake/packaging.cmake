# What `cmake --install` puts where, and the Debian package CPack makes of it.
# The program finds its data from its own folder (share/tolv beside bin/), so the same
# tree works under any prefix and inside the package.
include(GNUInstallDirs)

install(TARGETS tolv RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# The files each user's home folder is seeded with. The icon is not among them: the
# desktop takes it from the icon theme, the window has it compiled in.
file(GLOB TOLV_SHIPPED_FILES CONFIGURE_DEPENDS
     ${CMAKE_CURRENT_SOURCE_DIR}/data/*.txt ${CMAKE_CURRENT_SOURCE_DIR}/data/*.wav)
install(FILES ${TOLV_SHIPPED_FILES} DESTINATION ${CMAKE_INSTALL_DATADIR}/tolv)
install(DIRECTORY data/help DESTINATION ${CMAKE_INSTALL_DATADIR}/tolv)

# The build folder stands in for share/tolv while developing: the program looks for
# data/ beside itself last.
file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/data ${CMAKE_BINARY_DIR}/data SYMBOLIC)

set(TOLV_APP_ID org.kelvane.Tolv)
install(FILES packaging/${TOLV_APP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/${TOLV_APP_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
# Debian keeps man pages compressed; -n leaves the time out, so builds stay identical.
set(TOLV_MAN_PAGE ${CMAKE_BINARY_DIR}/tolv.1.gz)
add_custom_command(OUTPUT ${TOLV_MAN_PAGE}
  COMMAND gzip -9 -n -c ${CMAKE_CURRENT_SOURCE_DIR}/packaging/tolv.1 > ${TOLV_MAN_PAGE}
  DEPENDS packaging/tolv.1)
install(FILES ${TOLV_MAN_PAGE} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# Icon themes want fixed sizes beside the scalable icon; they are rendered from the SVG.
set(TOLV_ICON_SVG ${CMAKE_CURRENT_SOURCE_DIR}/data/icons/tolv.svg)
set(TOLV_HICOLOR ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES ${TOLV_ICON_SVG} DESTINATION ${TOLV_HICOLOR}/scalable/apps)
add_executable(tolv_render_icon tools/render_icon.cpp)
target_link_libraries(tolv_render_icon PRIVATE Qt6::Gui Qt6::Svg)
set(TOLV_ICON_PNGS)
foreach(size 48 256)
  set(png ${CMAKE_BINARY_DIR}/icons/${size}/tolv.png)
  add_custom_command(OUTPUT ${png}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/icons/${size}
    COMMAND tolv_render_icon ${TOLV_ICON_SVG} ${size} ${png}
    DEPENDS tolv_render_icon ${TOLV_ICON_SVG} VERBATIM)
  list(APPEND TOLV_ICON_PNGS ${png})
  install(FILES ${png} DESTINATION ${TOLV_HICOLOR}/${size}x${size}/apps)
endforeach()
add_custom_target(tolv_desktop_files ALL DEPENDS ${TOLV_ICON_PNGS} ${TOLV_MAN_PAGE})

# cpack -G DEB in the build folder makes tolv_<version>_<arch>.deb. Its dependencies are
# read from the libraries the binary links (dpkg-shlibdeps); on Debian the Qt platform
# and sound plugins come with those libraries.
set(CPACK_PACKAGE_NAME tolv)
set(CPACK_PACKAGE_VENDOR Kelvane)
set(CPACK_PACKAGE_CONTACT "Tolv developers <tolv@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "IRC client for small touch screens and the desktop")
set(CPACK_PACKAGE_DESCRIPTION
    "Tolv connects to one IRC server, joins channels, talks in channels and private chats,\n"
    "exchanges DCC chats and files and answers identd, in one window made for phone-sized\n"
    "screens. It also runs without a window, on standard input and output.")
string(JOIN "" CPACK_PACKAGE_DESCRIPTION ${CPACK_PACKAGE_DESCRIPTION})
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)

# What is installed where, and the Debian package of it. Building needs none of this: what is made from other files is
# made when it is installed.

include(GNUInstallDirs)

set(packaging ${PROJECT_SOURCE_DIR}/packaging/linux)
set(made ${PROJECT_BINARY_DIR}/packaging)
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
set(icon_sizes 16 22 24 32 48 64 128 256)

# Drawn in sizes too, for desktops that do not read SVG.
install(CODE "
  foreach(size ${icon_sizes})
    file(MAKE_DIRECTORY ${made}/\${size})
    execute_process(COMMAND rsvg-convert --width \${size} --height \${size}
                            --output ${made}/\${size}/app.orvel.Orvel.png ${packaging}/app.orvel.Orvel.svg
                    COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
  foreach(text changelog orvel.1)
    execute_process(COMMAND gzip -9n INPUT_FILE ${packaging}/\${text} OUTPUT_FILE ${made}/\${text}.gz
                    COMMAND_ERROR_IS_FATAL ANY)
  endforeach()")

install(TARGETS orvel)
install(FILES ${packaging}/app.orvel.Orvel.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${packaging}/app.orvel.Orvel.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${packaging}/app.orvel.Orvel.svg DESTINATION ${icons}/scalable/apps)
install(FILES ${packaging}/app.orvel.Orvel-symbolic.svg DESTINATION ${icons}/symbolic/apps)
foreach(size IN LISTS icon_sizes)
  install(FILES ${made}/${size}/app.orvel.Orvel.png DESTINATION ${icons}/${size}x${size}/apps)
endforeach()
install(FILES ${made}/orvel.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${packaging}/copyright ${made}/changelog.gz DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${packaging}/orvel.firewalld.xml DESTINATION lib/firewalld/services RENAME orvel.xml)
# The one place where ufw looks, which is not for what a user installs alone.
install(CODE "
  if(CMAKE_INSTALL_PREFIX MATCHES \"^/usr(/local)?$\")
    file(INSTALL \"${packaging}/orvel.ufw\" DESTINATION /etc/ufw/applications.d RENAME orvel)
  endif()")

# The package holds the one program, which is built before; installing need not build the others.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                                                WORLD_EXECUTE)
set(CPACK_PACKAGE_CONTACT "The Orvel developers <orvel@example.org>")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The libraries by what the program is linked to. Qt's plugins for X11 and for SVG are in packages of libraries that it
# is linked to, libqt6gui6 and libqt6svg6.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS hicolor-icon-theme)
# So that phones find the computer by themselves, the pointer finds what it is near, and Orvel finds the tray.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "avahi-daemon, at-spi2-core, default-dbus-session-bus | dbus-session-bus")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${packaging}/conffiles)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "phone as the computer's mouse, keyboard, launcher and screen")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "\
Orvel lets a phone on the same network move, click, drag and scroll the
pointer, type text of any script, press media keys, start and quit programs,
and see the screen.

A phone is paired by scanning a code, and proves on every connection that it
knows it. There is no account and no server in between.

Orvel sits in the tray of an X11 desktop. It does not work in Wayland sessions
yet.")
include(CPack)

# What an installation holds on Linux, and the Debian package made of it (cpack -G DEB,
# run by scripts/package.sh): the window, tvk, the desktop entry, its icon and AppStream
# data, the manual in the program folder and, in the package, the machine-wide
# installation record.

option(TVK_PACKAGE "Install for the Debian package: the machine-wide record under /etc/xdg" OFF)

# The program's version text, each part at least four digits: 2021.0922.1101.
set(TVK_VERSION_TEXT)
foreach(part ${PROJECT_VERSION_MAJOR} ${PROJECT_VERSION_MINOR} ${PROJECT_VERSION_PATCH})
    string(LENGTH "${part}" digits)
    while(digits LESS 4)
        string(PREPEND part "0")
        math(EXPR digits "${digits} + 1")
    endwhile()
    list(APPEND TVK_VERSION_TEXT ${part})
endforeach()
list(JOIN TVK_VERSION_TEXT "." TVK_VERSION_TEXT)

set(TVK_APP_ID com.morvelservices.TavrinFileManager)
set(TVK_PROGRAM_DIR share/tavrin-file-manager)
set(TVK_PACKAGING_DIR ${PROJECT_SOURCE_DIR}/packaging/linux)
set(TVK_PACKAGING_OUT ${PROJECT_BINARY_DIR}/packaging)

install(TARGETS tvk RUNTIME DESTINATION bin)
if(TARGET tavrin-file-manager)
    install(TARGETS tavrin-file-manager RUNTIME DESTINATION bin)
endif()
install(DIRECTORY DESTINATION ${TVK_PROGRAM_DIR})
install(FILES ${TVK_PACKAGING_DIR}/${TVK_APP_ID}.desktop DESTINATION share/applications)
install(FILES ${TVK_PACKAGING_DIR}/tavrin-file-manager.svg
        DESTINATION share/icons/hicolor/scalable/apps)
configure_file(${TVK_PACKAGING_DIR}/${TVK_APP_ID}.metainfo.xml.in
               ${TVK_PACKAGING_OUT}/${TVK_APP_ID}.metainfo.xml @ONLY)
install(FILES ${TVK_PACKAGING_OUT}/${TVK_APP_ID}.metainfo.xml DESTINATION share/metainfo)

if(TVK_PACKAGE)
    # Debian wants the changelog compressed without a time stamp, so that it is the same
    # at every build.
    configure_file(${TVK_PACKAGING_DIR}/changelog.in ${TVK_PACKAGING_OUT}/changelog @ONLY)
    add_custom_command(
        OUTPUT ${TVK_PACKAGING_OUT}/changelog.gz
        COMMAND gzip -9 -n -c ${TVK_PACKAGING_OUT}/changelog > ${TVK_PACKAGING_OUT}/changelog.gz
        DEPENDS ${TVK_PACKAGING_OUT}/changelog)
    add_custom_target(tvk_changelog ALL DEPENDS ${TVK_PACKAGING_OUT}/changelog.gz)
    install(FILES ${TVK_PACKAGING_DIR}/copyright ${TVK_PACKAGING_OUT}/changelog.gz
            DESTINATION share/doc/tavrin-file-manager)

    # The machine-wide record, found through $XDG_CONFIG_DIRS as the local-machine hive
    # is on Windows, so every user of the machine can start the program at once.
    set(TVK_PROGRAM_FOLDER /usr/${TVK_PROGRAM_DIR})
    set(TVK_MACHINE_RECORD /etc/xdg/tavrin-file-manager/registry.ini)
    configure_file(${TVK_PACKAGING_DIR}/registry.ini.in ${TVK_PACKAGING_OUT}/registry.ini @ONLY)
    install(FILES ${TVK_PACKAGING_OUT}/registry.ini DESTINATION /etc/xdg/tavrin-file-manager)
    file(WRITE ${TVK_PACKAGING_OUT}/conffiles "${TVK_MACHINE_RECORD}\n")
    configure_file(${TVK_PACKAGING_DIR}/postrm ${TVK_PACKAGING_OUT}/postrm @ONLY
                   FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ
                                    GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

    set(CPACK_GENERATOR DEB)
    set(CPACK_PACKAGE_NAME tavrin-file-manager)
    set(CPACK_PACKAGE_VERSION ${TVK_VERSION_TEXT})
    set(CPACK_PACKAGE_VENDOR "Morvel Services")
    set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "file manager for the thumbdrives of Tavrin organs")
    string(CONCAT CPACK_PACKAGE_DESCRIPTION
        "Backs up and restores the USB thumbdrives of Tavrin home organs, pools\n"
        "presets and recordings, gives files readable names, renumbers and sorts\n"
        "them the way the organ lists them, edits the names stored inside preset\n"
        "files and searches them. Includes tvk, the same commands on the command line.")
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
    set(CPACK_STRIP_FILES ON)
    set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE amd64)
    set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Morvel Services <support@morvelservices.com>")
    set(CPACK_DEBIAN_PACKAGE_SECTION utils)
    set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
    # dpkg-shlibdeps adds the Qt 6 and C++ runtime libraries the binaries link; the
    # window also needs Qt's platform plugins, which no binary links.
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins")
    set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils")
    set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
        ${TVK_PACKAGING_OUT}/conffiles ${TVK_PACKAGING_OUT}/postrm)
    set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
    include(CPack)
else()
    # A plain install writes the installation record into the installing user's record,
    # as the Windows installer writes the uninstall key.
    install(CODE "execute_process(COMMAND \"\${CMAKE_INSTALL_PREFIX}/bin/tvk\" register --location \"\${CMAKE_INSTALL_PREFIX}/${TVK_PROGRAM_DIR}\")")
endif()

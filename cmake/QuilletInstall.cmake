# What `cmake --install` puts in place and how CPack turns it into a .deb:
# the two programs, the desktop entry, the icon, the AppStream metainfo, the
# man pages and the package's own documentation.
include(GNUInstallDirs)

set(QUILLET_APP_ID io.github.quillet.Quillet)
set(QUILLET_PACKAGING_DIR ${PROJECT_SOURCE_DIR}/packaging)
set(QUILLET_GENERATED_DIR ${PROJECT_BINARY_DIR}/packaging)

# Every Quillet library is static; the installed programs need no search
# path of their own (Qt's project set-up would give them $ORIGIN).
set_target_properties(quillet quillet-report PROPERTIES INSTALL_RPATH "")
install(TARGETS quillet quillet-report RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

install(FILES ${QUILLET_PACKAGING_DIR}/${QUILLET_APP_ID}.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${QUILLET_PACKAGING_DIR}/${QUILLET_APP_ID}.metainfo.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

foreach(size 16 22 24 32 48 64 128 256)
    install(FILES ${QUILLET_PACKAGING_DIR}/icons/quillet-${size}.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps
        RENAME quillet.png)
endforeach()
install(FILES ${QUILLET_PACKAGING_DIR}/icons/quillet.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)

# Man pages and the changelog are installed compressed, without a time stamp
# in the gzip header, so that two builds give the same bytes.
set(QUILLET_COMPRESSED)
foreach(source man/quillet.1 man/quillet-report.1 changelog)
    get_filename_component(name ${source} NAME)
    set(output ${QUILLET_GENERATED_DIR}/${name}.gz)
    add_custom_command(OUTPUT ${output}
        COMMAND gzip -9 -n -c ${QUILLET_PACKAGING_DIR}/${source} > ${output}
        DEPENDS ${QUILLET_PACKAGING_DIR}/${source}
        VERBATIM)
    list(APPEND QUILLET_COMPRESSED ${output})
endforeach()
add_custom_target(quillet_packaging_files ALL DEPENDS ${QUILLET_COMPRESSED})
install(FILES ${QUILLET_GENERATED_DIR}/quillet.1.gz ${QUILLET_GENERATED_DIR}/quillet-report.1.gz
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${QUILLET_PACKAGING_DIR}/copyright ${QUILLET_GENERATED_DIR}/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/quillet)

# The .deb: `cpack` in the build directory (scripts/package runs it).
set(QUILLET_PACKAGE_MAINTAINER "Quillet developers <quillet@example.org>"
    CACHE STRING "Maintainer named in the .deb")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillet)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${QUILLET_PACKAGE_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "financial calculator for investments and loans")
set(CPACK_PACKAGE_DESCRIPTION
    "Quillet keeps two lists of scenarios, investments and loans, in a grid: the
initial amount, a yearly rate, the years, a periodic payment, the payments per
year, and the future value or the total interest. Fill in what you know and
leave one quantity blank: Quillet calculates it and shows it in bold. Every
change is on disk at once; undo takes back the last ten. Amortization
schedules can be edited and printed, and quillet-report writes the lists and
schedules as text, CSV, JSON, PDF or a chart.")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Besides the libraries it links: the fonts the printouts are measured in, and
# the platform plugins without which no Qt window opens (only recommended by
# Qt's own packages).
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-liberation, qt6-qpa-plugins")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)

# What an installation consists of: the libraries, and what building against it takes.

install(TARGETS vantel vantel_guarded EXPORT vantel
    LIBRARY
        DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT runtime
        NAMELINK_COMPONENT development)
install(TARGETS vantel_draw EXPORT vantel
    ARCHIVE
        DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT development)

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)
list(TRANSFORM vantel_headers PREPEND ${PROJECT_BINARY_DIR}/include/ OUTPUT_VARIABLE vantel_installed_headers)
install(FILES ${vantel_installed_headers} ${PROJECT_BINARY_DIR}/include/vantel_exceptions.hpp
    ${PROJECT_BINARY_DIR}/include/vantel_draw.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# find_package(vantel 1 CONFIG). The library needs no other package, so the exported targets are all of it.
include(CMakePackageConfigHelpers)
set(vantel_package ${CMAKE_INSTALL_LIBDIR}/cmake/vantel)
install(EXPORT vantel FILE vantel-config.cmake NAMESPACE vantel:: DESTINATION ${vantel_package})
write_basic_package_version_file(vantel-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vantel-config-version.cmake DESTINATION ${vantel_package})

# pkg-config. The prefix is found from where the file lies, so that the whole tree can be moved.
file(RELATIVE_PATH vantel_up /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" vantel_up ${vantel_up})
function(vantel_pkg_config name description libraries)
    configure_file(cmake/vantel.pc.in ${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
vantel_pkg_config(vantel "${PROJECT_DESCRIPTION}" -lvantel)
vantel_pkg_config(vantel-draw "Pictures of states of qudits, as text and SVG" "-lvantel_draw -lm")
vantel_pkg_config(vantel-guarded "${PROJECT_DESCRIPTION}, for hosts that no exception may enter" -lvantel_guarded)

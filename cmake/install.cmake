# What an installation consists of: the library, and what building against it takes.

install(TARGETS vantel EXPORT vantel
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
foreach(name IN ITEMS vantel vantel-draw)
    configure_file(cmake/${name}.pc.in ${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples
    FILES_MATCHING PATTERN CMakeLists.txt PATTERN *.c PATTERN *.cpp PATTERN *.h PATTERN *.hpp PATTERN *.py PATTERN *.ipynb)
install(FILES README.md docs/guide.md docs/exceptions.md docs/python.md DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)

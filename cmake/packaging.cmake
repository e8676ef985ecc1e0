# `cpack` in the build directory makes the two Debian packages and a tar.gz. The same source gives the same
# bytes wherever it is built, as long as SOURCE_DATE_EPOCH says one time.

target_compile_options(vantel_compiler INTERFACE
    -ffile-prefix-map=${PROJECT_BINARY_DIR}=.
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)

set(packages libvantel1:runtime libvantel-dev:development)
if(VANTEL_PYTHON)
    list(APPEND packages python3-vantel:python)
endif()
foreach(package IN LISTS packages)
    string(REPLACE ":" ";" package ${package})
    list(GET package 0 name)
    list(GET package 1 component)
    install(FILES LICENSE RENAME copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
endforeach()

set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/one_time_for_all.cmake)
set(CPACK_PACKAGE_CONTACT "The libvantel developers <libvantel@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "simulator of qudits, quantum systems of 2 to 10 levels")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "The shared library.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libvantel1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers, documentation, examples, and what CMake and pkg-config need.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvantel-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libvantel1 (= ${PROJECT_VERSION})")

if(VANTEL_PYTHON)
    list(APPEND CPACK_COMPONENTS_ALL python)
    set(CPACK_COMPONENT_PYTHON_DESCRIPTION "The package for Python.")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-vantel)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
    # Its other libraries are those of libvantel1.
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS OFF)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
        "libvantel1 (= ${PROJECT_VERSION}), python3 (>= 3.11), python3 (<< 3.12), python3-numpy")
endif()

include(CPack)

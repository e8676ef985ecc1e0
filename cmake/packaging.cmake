# `cpack` in the build directory makes the Debian packages and a tar.gz. The same source gives the same
# bytes wherever it is built, as long as SOURCE_DATE_EPOCH says one time.

target_compile_options(vantel_compiler INTERFACE
    -ffile-prefix-map=${PROJECT_BINARY_DIR}=.
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
target_link_options(vantel PRIVATE LINKER:-z,relro,-z,now)
target_link_options(vantel_guarded PRIVATE LINKER:-z,relro,-z,now)
if(TARGET vantel_python)
    target_link_options(vantel_python PRIVATE LINKER:-z,relro,-z,now)
endif()

# What Debian wants beside a package, and only there: whose it is, what changed, and what lintian is asked to let pass.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(changelog ${PROJECT_BINARY_DIR}/changelog.gz)
    add_custom_command(OUTPUT ${changelog}
        COMMAND sh -c "${VANTEL_GZIP} -9n <${PROJECT_SOURCE_DIR}/packaging/changelog >${changelog}"
        DEPENDS packaging/changelog VERBATIM)
    add_custom_target(changelog ALL DEPENDS ${changelog})
    set(packages libvantel1:runtime libvantel-dev:development libvantel-doc:documentation)
    if(VANTEL_PYTHON)
        list(APPEND packages python3-vantel:python)
    endif()
    foreach(package IN LISTS packages)
        string(REPLACE ":" ";" package ${package})
        list(GET package 0 name)
        list(GET package 1 component)
        install(FILES packaging/copyright ${changelog}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
    endforeach()
    install(FILES packaging/lintian-overrides RENAME libvantel1
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT runtime)
    if(VANTEL_HTML)
        install(FILES packaging/doc-base RENAME libvantel-doc
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc-base COMPONENT documentation)
    endif()

    # The bill of materials has the time of the packages in it, so it is made when they are.
    set(materials ${PROJECT_BINARY_DIR}/libvantel.spdx.json)
    file(TOUCH ${materials})
    install(CODE "
        string(TIMESTAMP now %Y-%m-%dT%H:%M:%SZ UTC)
        set(version ${PROJECT_VERSION})
        configure_file([[${PROJECT_SOURCE_DIR}/packaging/libvantel.spdx.json.in]] [[${materials}]] @ONLY)"
        COMPONENT runtime)
    install(FILES ${materials} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libvantel1 COMPONENT runtime)
endif()
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/one_time_for_all.cmake)
set(CPACK_PACKAGE_CONTACT "The libvantel developers <libvantel@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "simulator of qudits, quantum systems of 2 to 10 levels")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL runtime development documentation)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(about "libvantel simulates quantum systems of 2 to 10 levels each, up to ten of them
in one joint state. It stores the basis states in use and not the whole space.")

set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "${about}
.
This package has the shared library, and the one for programs that no C++
exception may enter.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libvantel1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA 
    ${PROJECT_SOURCE_DIR}/packaging/symbols ${PROJECT_SOURCE_DIR}/packaging/shlibs ${PROJECT_SOURCE_DIR}/packaging/triggers)
if(CMAKE_CROSSCOMPILING)
    # What is linked lies in packages of the cross compiler, which the target does not have.
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${VANTEL_DEBIAN_ARCHITECTURE})
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "libc6 (>= 2.34), libgcc-s1 (>= 3.0), libstdc++6 (>= 12)")
else()
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
endif()

set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "${about}
.
This package has the headers in C and C++, and what CMake and pkg-config need.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvantel-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libvantel1 (= ${PROJECT_VERSION})")

set(CPACK_COMPONENT_DOCUMENTATION_DESCRIPTION "${about}
.
This package has manual pages, the guide, and examples with their build file.")
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME libvantel-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SUGGESTS libvantel-dev)
if(VANTEL_PYTHON)
    list(APPEND CPACK_COMPONENTS_ALL python)
    set(CPACK_COMPONENT_PYTHON_DESCRIPTION "${about}
.
This package has the module for Python 3.")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-vantel)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
    # The one library that no installed package knows is that of libvantel1.
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
    set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
        "libvantel1 (= ${PROJECT_VERSION}), python3 (>= 3.11), python3 (<< 3.12), python3-numpy")
    # Modules are compiled where they are installed, and what that made is removed with them.
    set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
        ${PROJECT_SOURCE_DIR}/packaging/python/postinst ${PROJECT_SOURCE_DIR}/packaging/python/prerm)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_STRICT_PERMISSION ON)
endif()

include(CPack)

# Pages, manual pages and examples as they are installed. All that this takes is awk and gzip; the reference as HTML
# takes Doxygen and is asked for by an option.

option(VANTEL_HTML "Make and install the guide and the reference as HTML; takes Doxygen" OFF)
find_program(VANTEL_AWK awk REQUIRED)
find_program(VANTEL_GZIP gzip REQUIRED)
mark_as_advanced(VANTEL_AWK VANTEL_GZIP)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME documentation)

set(documents)
foreach(header IN ITEMS vantel vantel_guarded)
    set(man ${PROJECT_BINARY_DIR}/man/${header})
    file(MAKE_DIRECTORY ${man})
    add_custom_command(OUTPUT ${man}/${header}.3.gz
        COMMAND ${VANTEL_AWK} -v directory=${man} -v version=${PROJECT_VERSION} -v header=${header}.h
            -f ${PROJECT_SOURCE_DIR}/packaging/man_pages.awk ${PROJECT_SOURCE_DIR}/interface/${header}.h
        COMMAND sh -c "${VANTEL_GZIP} -9nf ${man}/*.3"
        DEPENDS packaging/man_pages.awk interface/${header}.h VERBATIM)
    list(APPEND documents ${man}/${header}.3.gz)
    install(DIRECTORY ${man}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man3)
endforeach()

# Pages keep their places to each other. What they link to and is not installed becomes plain text.
set(pages README.md CHANGELOG.md SECURITY.md docs/guide.md docs/exceptions.md docs/python.md docs/performance.md docs/performance_table.md)
file(GLOB pictures RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS docs/*.svg)
set(kept ${pages} ${pictures} examples)
list(JOIN kept " " kept)
foreach(page IN LISTS pages)
    get_filename_component(folder ${page} DIRECTORY)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/pages/${folder})
    set(made ${PROJECT_BINARY_DIR}/pages/${page})
    add_custom_command(OUTPUT ${made}
        COMMAND ${VANTEL_AWK} -v "kept=${kept}" -f packaging/installed_page.awk ${page} > ${made}
        DEPENDS packaging/installed_page.awk ${page} WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM)
    list(APPEND documents ${made})
    install(FILES ${made} DESTINATION ${CMAKE_INSTALL_DOCDIR}/${folder})
endforeach()
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${pictures} DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)

if(VANTEL_HTML)
    find_program(VANTEL_DOXYGEN doxygen REQUIRED)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS interface/*.h interface/*.hpp drawing/*.h docs/*.md)
    add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/reference/html/index.html
        COMMAND ${CMAKE_COMMAND} -E rm -rf ${PROJECT_BINARY_DIR}/reference
        COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/reference
        COMMAND ${CMAKE_COMMAND} -E env VANTEL_REFERENCE=${PROJECT_BINARY_DIR}/reference ${VANTEL_DOXYGEN} docs/Doxyfile
        # They fold lists, and one of them is somebody else's library; the pages do without.
        COMMAND sh -c "cd ${PROJECT_BINARY_DIR}/reference/html && rm -f *.js && sed -i '/<script /d' *.html"
        DEPENDS docs/Doxyfile packaging/installed_page.awk ${sources}
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM)
    list(APPEND documents ${PROJECT_BINARY_DIR}/reference/html/index.html)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/reference/html DESTINATION ${CMAKE_INSTALL_DOCDIR})
endif()
add_custom_target(documentation ALL DEPENDS ${documents})

install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples
    FILES_MATCHING PATTERN CMakeLists.txt PATTERN *.c PATTERN *.cpp PATTERN *.h PATTERN *.hpp PATTERN *.py PATTERN *.ipynb)

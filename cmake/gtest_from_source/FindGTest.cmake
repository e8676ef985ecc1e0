# Found by way of CMAKE_MODULE_PATH: builds the tests' framework with the compiler at hand, where Debian has none
# built for that target or on that standard library.
if(NOT TARGET gtest)
    block()
        set(BUILD_GMOCK OFF)
        set(CMAKE_COMPILE_WARNING_AS_ERROR OFF)
        add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
    endblock()
endif()
set(GTest_FOUND TRUE)

# Builds the examples of an installation. From a directory of your own:
#     cmake -S /usr/share/doc/vantel/examples -B examples && cmake --build examples
# Each program checks its own results; `ctest` runs them all.
cmake_minimum_required(VERSION 3.25)
project(vantel_examples LANGUAGES C CXX)
find_package(vantel 1 CONFIG REQUIRED)
enable_testing()

# The drawing piece, of which two programs are made that are in C.
if(NOT TARGET vantel::draw)
    add_library(draw STATIC draw.c)
    target_include_directories(draw INTERFACE ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(draw PUBLIC vantel::vantel m)
    add_library(vantel::draw ALIAS draw)
endif()

file(GLOB programs *.c *.cpp)
list(FILTER programs EXCLUDE REGEX "/draw\\.c$")
foreach(program IN LISTS programs)
    get_filename_component(name ${program} NAME_WE)
    add_executable(${name} ${program})
    target_compile_features(${name} PRIVATE cxx_std_20 c_std_99)
    target_link_libraries(${name} PRIVATE vantel::vantel vantel::draw m)
    add_test(NAME ${name} COMMAND ${name})
endforeach()

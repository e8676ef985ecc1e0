# The library: one set of objects for the shared library and for the unit tests.

add_library(vantel_objects OBJECT
    gates/act.cpp
    gates/clock.cpp
    gates/cycle.cpp
    gates/fourier_groups.cpp
    gates/fourier_sums.cpp
    gates/fractional_step.cpp
    gates/frame.cpp
    gates/hadamard.cpp
    gates/i_swap.cpp
    gates/phase_rotate.cpp
    gates/shift.cpp
    gates/swap.cpp
    interface/frame.cpp
    interface/gates.cpp
    interface/readouts.cpp
    property/joint_state.cpp
    property/operations.cpp
    readout/density_matrix.cpp
    readout/matrix_by_rank.cpp
    readout/measure.cpp
    readout/outcomes.cpp
    readout/probabilities.cpp
    state/dit_array.cpp
    state/exceptions.cpp
    state/position_table.cpp
    state/reduction.cpp
    state/state.cpp
    state/state_factory.cpp
    state/tensor_product.cpp)
# The question to the processor, apart, so that one test can answer it and try both forms of every loop.
add_library(vantel_processor OBJECT algorithms/processor.cpp)
foreach(part vantel_objects vantel_processor)
    set_target_properties(${part} PROPERTIES
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    target_include_directories(${part} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(${part} PRIVATE vantel_compiler)
endforeach()

# The headers as they stand after an installation, so that tests and examples see no more than a user.
set(vantel_headers vantel.h vantel_guarded.h vantel.hpp vantel_circuit.hpp vantel_circuit_drawing.hpp
    vantel_circuit_steps.hpp vantel_circuit_text.hpp vantel_conditional_sampling.hpp vantel_ensemble.hpp
    vantel_lists.hpp vantel_noise.hpp vantel_quantities.hpp vantel_random.hpp vantel_sampling.hpp
    vantel_unitary.hpp)
foreach(header IN LISTS vantel_headers)
    configure_file(interface/${header} include/${header} COPYONLY)
endforeach()
configure_file(state/exceptions.hpp include/vantel_exceptions.hpp COPYONLY)

# What both shared libraries are: versioned, with the symbols that their map names.
function(vantel_shared name)
    add_library(${name} SHARED ${ARGN})
    target_link_libraries(${name} PRIVATE vantel_objects vantel_processor)
    set_target_properties(${name} PROPERTIES
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/${name}.map)
    target_link_options(${name} PRIVATE
        LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/${name}.map
        LINKER:--no-undefined)
    target_include_directories(${name} INTERFACE
        $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endfunction()

vantel_shared(vantel)
add_library(vantel::vantel ALIAS vantel)

# The face that lets no exception out contains the library, since it takes qudits out of joint states by a way of its
# own. EXPORT_NAME makes it vantel::guarded to the projects that find it.
vantel_shared(vantel_guarded guarded/boundary.cpp guarded/functions.cpp guarded/handles.cpp)
add_library(vantel::guarded ALIAS vantel_guarded)
set_target_properties(vantel_guarded PROPERTIES
    EXPORT_NAME guarded
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
target_link_libraries(vantel_guarded PRIVATE vantel_compiler)
target_compile_definitions(vantel_guarded PRIVATE VANTEL_VERSION="${PROJECT_VERSION}")

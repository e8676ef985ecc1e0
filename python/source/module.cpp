#include "objects.hpp"

PYBIND11_MODULE(_core, module) {
    module.doc() = "The part of vantel that is written in C++.";
    vantel::python::bind_errors();
    vantel::python::bind_objects(module);
    vantel::python::bind_gates(module);
    vantel::python::bind_readouts(module);
    vantel::python::bind_quantities(module);
    vantel::python::bind_sampling(module);
    vantel::python::bind_channels(module);
    vantel::python::bind_circuits(module);
    vantel::python::bind_pictures(module);
    char version[16]; // copied without a call, which could write where the text stood
    const char* const text = vantel_version();
    for (std::size_t i = 0; i < sizeof version; ++i) version[i] = text[i];
    version[sizeof version - 1] = '\0';
    module.attr("version") = static_cast<const char*>(version);
}

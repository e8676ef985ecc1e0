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
    module.attr("version") = vantel_version();
}

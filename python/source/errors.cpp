#include "objects.hpp"
#include <new>

namespace vantel::python {
namespace {
PyObject* error_class = nullptr; // kept as long as the interpreter
PyObject* status_class = nullptr;

void raise(int status, const char* text) {
    // Where even this fails, for want of memory, Python has that failure instead.
    PyObject* const name = PyObject_CallFunction(status_class, "i", status);
    PyObject* const error = name != nullptr ? PyObject_CallFunction(error_class, "Os", name, text) : nullptr;
    if (error != nullptr) PyErr_SetObject(error_class, error);
    Py_XDECREF(error);
    Py_XDECREF(name);
}
} // namespace

void raise_in_python(std::exception_ptr failure) {
    try {
        std::rethrow_exception(failure);
    } catch (py::error_already_set& set) {
        set.restore();
    } catch (const py::builtin_exception& wanted) {
        wanted.set_error();
    } catch (const vantel::Error& error) {
        raise(error.status(), error.what());
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
    } catch (const std::logic_error& wrong) { // an argument that no call could do anything with
        PyErr_SetString(PyExc_ValueError, wrong.what());
    } catch (const std::exception& other) {
        PyErr_SetString(PyExc_RuntimeError, other.what());
    }
}

void bind_errors() {
    const auto errors = py::module_::import("vantel._errors");
    error_class = py::object(errors.attr("Error")).release().ptr();
    status_class = py::object(errors.attr("Status")).release().ptr();
    py::register_local_exception_translator([](std::exception_ptr failure) {
        if (failure) raise_in_python(failure);
    });
}
} // namespace vantel::python

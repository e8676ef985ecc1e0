// What Python holds, and how it is taken out of Python's hands. An argument is looked at before it is used:
// objects of other types, objects that were never initialised and qudits that were closed all raise.
#pragma once

#include "joint_state.hpp"
#include <memory>
#include <pybind11/pybind11.h>
#include <string>
#include <utility>
#include <vector>

namespace vantel::python {
namespace py = pybind11;

/// What a Python program calls a qudit by; when the last one goes, the qudit does.
class Name {
public:
    explicit Name(std::shared_ptr<Member> member) : member_(std::move(member)) {}
    ~Name() { close(); }
    Name(const Name&) = delete;
    Name& operator=(const Name&) = delete;

    void close() noexcept {
        if (member_->dropped) return;
        member_->dropped = true;
        const std::shared_ptr<JointState> joint = member_->joint; // alive while it empties itself
        joint->let_go();
    }

    [[nodiscard]] bool closed() const noexcept { return member_->dropped; }

    /// @throws std::invalid_argument  if the qudit was closed.
    [[nodiscard]] const std::shared_ptr<Member>& member() const {
        if (closed()) throw std::invalid_argument(closed_text);
        return member_;
    }

private:
    std::shared_ptr<Member> member_;
};

struct Qudit {
    std::shared_ptr<Name> name;
    int dimension;
};

/// Conditions that must hold together.
struct Condition {
    struct Term {
        std::shared_ptr<Name> name;
        int level;
        bool is_equal;
    };
    std::vector<Term> terms;
};

/// Python's class of each, set when the module is made.
template <class Object> inline PyTypeObject* class_of = nullptr;

/// Ends the making of a class. No other can take the place of an object's class from now on, by inheritance
/// or by assignment to `__class__`: what is inside is told by the class alone.
template <class Object> void seal() {
    class_of<Object>->tp_flags |= Py_TPFLAGS_IMMUTABLETYPE;
    PyType_Modified(class_of<Object>);
}

/// The C++ object behind one of Python's; null if that is of another class.
/// @throws py::type_error  for an object whose initialisation was passed by.
template <class Object> Object* find(PyObject* object) {
    if (Py_TYPE(object) != class_of<Object>) return nullptr;
    auto inside = reinterpret_cast<py::detail::instance*>(object)->get_value_and_holder();
    if (!inside.holder_constructed())
        throw py::type_error(std::string(Py_TYPE(object)->tp_name) + " that was not initialised");
    return static_cast<Object*>(inside.value_ptr());
}

/// As find(), and raises for another class: "`what` must be a `name`, not ...".
template <class Object> Object& get(py::handle object, const char* what, const char* name) {
    Object* const found = find<Object>(object.ptr());
    if (found == nullptr)
        throw py::type_error(std::string(what) + " must be a " + name + ", not " + Py_TYPE(object.ptr())->tp_name);
    return *found;
}

inline Qudit& get_qudit(py::handle object, const char* what = "a qudit") {
    return get<Qudit>(object, what, "vantel.Qudit");
}

/// A whole number; True and False are none.
inline long get_integer(py::handle object, const char* what) {
    if (PyBool_Check(object.ptr()) || PyIndex_Check(object.ptr()) == 0)
        throw py::type_error(std::string(what) + " must be an integer, not " + Py_TYPE(object.ptr())->tp_name);
    const auto index = py::reinterpret_steal<py::object>(PyNumber_Index(object.ptr()));
    if (!index) throw py::error_already_set();
    int overflow = 0;
    const long value = PyLong_AsLongAndOverflow(index.ptr(), &overflow);
    if (value == -1 && overflow == 0 && PyErr_Occurred() != nullptr) throw py::error_already_set();
    if (overflow != 0) throw py::value_error(std::string(what) + " is out of range");
    return value;
}

/// Qudits as arguments one by one, each once, at least one.
struct QuditArguments {
    explicit QuditArguments(py::args arguments);

    std::vector<std::shared_ptr<Member>> members;
    std::vector<py::ssize_t> dimensions;
    std::size_t combinations = 1; ///< of their levels

    /// The qudits with the last one first: then rows of the library, whose first qudit varies fastest, stand
    /// as NumPy's arrays do, whose last index varies fastest.
    [[nodiscard]] std::vector<std::reference_wrapper<vantel::Qudit>> reversed() const;
};

void bind_errors();
void bind_objects(py::module_& module);
void bind_gates(py::module_& module);
void bind_readouts(py::module_& module);
void bind_quantities(py::module_& module);
void bind_sampling(py::module_& module);
void bind_channels(py::module_& module);
void bind_circuits(py::module_& module);
void bind_pictures(py::module_& module);

/// Sets Python's exception for the C++ exception that is being handled.
void raise_in_python(std::exception_ptr failure);
} // namespace vantel::python

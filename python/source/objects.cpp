#include "objects.hpp"
#include <array>

namespace vantel::python {
namespace {
/// Two qudits are equal if they are one, as a list that looks for one expects; a level makes a condition.
py::object compare(py::handle self, py::handle level, bool is_equal) {
    const Qudit& qudit = get_qudit(self);
    if (const Qudit* const other = find<Qudit>(level.ptr())) return py::bool_((qudit.name == other->name) == is_equal);
    const long value = get_integer(level, "a level that a qudit is compared with");
    if (value < 0 || value >= qudit.dimension)
        throw py::value_error("no level " + std::to_string(value) + " of a qudit with " +
                              std::to_string(qudit.dimension) + " levels");
    (void)qudit.name->member(); // raises if it was closed
    return py::cast(Condition{{{qudit.name, static_cast<int>(value), is_equal}}});
}

std::string text_of(const Condition& condition) {
    std::string text = "<vantel.Condition";
    for (const Condition::Term& term : condition.terms)
        text += std::string(&term == condition.terms.data() ? " " : " & ") + "level " +
                (term.is_equal ? "== " : "!= ") + std::to_string(term.level);
    return text + ">";
}

Condition& get_condition(py::handle object) { return get<Condition>(object, "a condition", "vantel.Condition"); }

py::object joined(py::handle left, py::handle right) {
    const Condition &first = get_condition(left), &second = get_condition(right);
    Condition both;
    both.terms.reserve(first.terms.size() + second.terms.size());
    both.terms.insert(both.terms.end(), first.terms.begin(), first.terms.end());
    both.terms.insert(both.terms.end(), second.terms.begin(), second.terms.end());
    return py::cast(std::move(both));
}

/// Calls as the operators of the interpreter do, past the way by the method's name: conditions are written
/// anew for nearly every gate.
template <class Body> PyObject* fast(Body body) {
    try {
        return body().release().ptr();
    } catch (const std::exception&) {
        raise_in_python(std::current_exception());
        return nullptr;
    }
}

PyObject* compare_fast(PyObject* self, PyObject* level, int operation) {
    if (operation != Py_EQ && operation != Py_NE) Py_RETURN_NOTIMPLEMENTED;
    return fast([&] { return compare(self, level, operation == Py_EQ); });
}

PyObject* join_fast(PyObject* left, PyObject* right) {
    return fast([&] { return joined(left, right); });
}

/// Neither a copy nor a file can hold a qudit.
[[noreturn]] py::object refuse_copy(const py::args&) {
    throw py::type_error("a state of qudits cannot be copied or pickled");
}
} // namespace

QuditArguments::QuditArguments(py::args arguments) {
    if (arguments.empty()) throw py::type_error("at least one qudit is required");
    for (const py::handle argument : arguments) {
        const Qudit& qudit = get_qudit(argument);
        const std::shared_ptr<Member>& member = qudit.name->member();
        for (const auto& other : members)
            if (other == member) throw py::value_error("a qudit is listed twice");
        members.push_back(member);
        dimensions.push_back(qudit.dimension);
    }
    // Ten qudits are the most that a joint state can have, and 10^10 can be counted.
    if (members.size() > 10) throw vantel::Error(vantel_bad_qudit_number, "a joint state can have 10 qudits");
    for (const py::ssize_t dimension : dimensions) combinations *= static_cast<std::size_t>(dimension);
}

std::vector<std::reference_wrapper<vantel::Qudit>> QuditArguments::reversed() const {
    std::vector<std::reference_wrapper<vantel::Qudit>> list;
    for (auto member = members.rbegin(); member != members.rend(); ++member) list.push_back((*member)->qudit);
    return list;
}

void bind_objects(py::module_& module) {
    py::class_<Qudit> qudit(module, "Qudit", py::is_final(),
                            R"(A qudit of 2 to 10 levels, in level 0 and in a joint state of its own.

`q == level` and `q != level` make conditions. A qudit that is closed, by close(), by the end of a `with` block or because
no name is left, can be asked nothing more. The others keep what they are: their probabilities and density
matrices are those with this qudit traced out.

dimension: the number of levels, 2 to 10.
Raises Error with Status.BAD_DIMENSION for any other.)");
    qudit.def(py::init([](py::handle dimension) {
                  const long levels = get_integer(dimension, "dimension");
                  if (levels < 2 || levels > 10)
                      throw vantel::Error(vantel_bad_dimension, "a dimension is not in 2 .. 10");
                  return Qudit{std::make_shared<Name>(make_member(static_cast<int>(levels))), static_cast<int>(levels)};
              }),
              py::arg("dimension"));
    class_of<Qudit> = reinterpret_cast<PyTypeObject*>(qudit.ptr());
    qudit.def_property_readonly(
        "dimension", [](py::handle self) { return get_qudit(self).dimension; }, "The number of levels.");
    qudit.def_property_readonly(
        "closed", [](py::handle self) { return get_qudit(self).name->closed(); }, "Whether close() was called.");
    qudit.def(
        "close", [](py::handle self) { get_qudit(self).name->close(); },
        "Gives the qudit up; once more changes nothing. It is not measured.");
    qudit.def("__enter__", [](py::handle self) {
        (void)get_qudit(self).name->member();
        return py::reinterpret_borrow<py::object>(self);
    });
    qudit.def("__exit__", [](py::handle self, const py::args&) { get_qudit(self).name->close(); });
    qudit.def(
        "__eq__", [](py::handle self, py::handle level) { return compare(self, level, true); }, py::arg("level"));
    qudit.def(
        "__ne__", [](py::handle self, py::handle level) { return compare(self, level, false); }, py::arg("level"));
    class_of<Qudit>->tp_richcompare = compare_fast;
    qudit.def("__hash__", [](py::handle self) { return reinterpret_cast<std::size_t>(self.ptr()) >> 4; });
    qudit.def("__repr__", [](py::handle self) {
        const Qudit& shown = get_qudit(self);
        return "<vantel.Qudit of " + std::to_string(shown.dimension) + " levels" +
               (shown.name->closed() ? ", closed>" : ">");
    });

    py::class_<Condition> conditions(module, "Condition", py::is_final(),
                                     R"(Where a gate acts: levels of qudits, joined by `&`.

Made by `q == level` and `q != level`. It has no truth value: write `(a == 1) & (c != 0)`, with the brackets, and
not `and`.)");
    class_of<Condition> = reinterpret_cast<PyTypeObject*>(conditions.ptr());
    conditions.def("__and__", joined, py::arg("other"));
    class_of<Condition>->tp_as_number->nb_and = join_fast;
    conditions.def("__bool__", [](py::handle) -> bool {
        throw py::type_error("a condition has no truth value: join conditions by & and brackets");
    });
    conditions.def("__repr__", [](py::handle self) { return text_of(get_condition(self)); });
    for (const char* const name : {"__copy__", "__deepcopy__", "__reduce__", "__reduce_ex__"}) {
        qudit.def(name, refuse_copy);
        if (std::string_view(name).starts_with("__reduce")) conditions.def(name, refuse_copy);
    }
    seal<Qudit>();
    seal<Condition>();
}
} // namespace vantel::python

// The gates. A gate is called more often than anything else, so that its arguments are taken as the
// interpreter has them, without the conversions that the rest of the module uses.
#include "objects.hpp"
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <span>

namespace vantel::python {
namespace {
/// The arguments of one call, by place and by name.
struct Arguments {
    PyObject* const* values;
    Py_ssize_t by_place;
    PyObject* names; ///< a tuple, or null

    /// Puts them in the order of `all`, of which the first `places` can be given by place and `required` must
    /// be given.
    template <std::size_t N> std::array<PyObject*, N> in_order(const char* function,
                                                               const std::array<const char*, N>& all,
                                                               std::size_t places, std::size_t required) const {
        std::array<PyObject*, N> found{};
        const auto refuse = [&](const std::string& text) { throw py::type_error(function + ("(): " + text)); };
        if (by_place > static_cast<Py_ssize_t>(places))
            refuse(std::to_string(by_place) + " arguments by place, where " + std::to_string(places) +
                   " can be; conditions are given as when=...");
        for (Py_ssize_t i = 0; i < by_place; ++i) found[static_cast<std::size_t>(i)] = values[i];
        const Py_ssize_t named = names != nullptr ? PyTuple_GET_SIZE(names) : 0;
        for (Py_ssize_t i = 0; i < named; ++i) {
            PyObject* const name = PyTuple_GET_ITEM(names, i);
            std::size_t place = 0;
            while (place < N && PyUnicode_CompareWithASCIIString(name, all[place]) != 0) ++place;
            if (place == N) refuse("no argument is called '" + py::cast<std::string>(py::handle(name)) + "'");
            if (found[place] != nullptr) refuse("'" + std::string(all[place]) + "' is given twice");
            found[place] = values[by_place + i];
        }
        for (std::size_t i = 0; i < required; ++i)
            if (found[i] == nullptr) refuse("'" + std::string(all[i]) + "' is missing");
        return found;
    }
};

/// What a gate acts on and where.
struct Place {
    std::span<const std::shared_ptr<Member>> targets;
    std::vector<std::shared_ptr<Member>> controls; ///< first those of the conditions, one for each
    std::size_t conditions = 0;

    /// @param when  a condition, None, or null for none.
    Place(std::span<const std::shared_ptr<Member>> given, PyObject* when) : targets(given) {
        if (when == nullptr || when == Py_None) return;
        const Condition& condition = get<Condition>(when, "when", "vantel.Condition");
        for (const Condition::Term& term : condition.terms) {
            const std::shared_ptr<Member>& control = term.name->member();
            for (const auto& target : targets)
                if (target == control)
                    throw vantel::Error(vantel_target_control_overlap, "a condition names a target of the gate");
            controls.push_back(control);
        }
        conditions = controls.size();
    }

    /// More qudits that the gate is about.
    void joins(Members others) { controls.insert(controls.end(), others.begin(), others.end()); }

    /// Brings all into one joint state and applies the gate there.
    template <class Gate> void apply(PyObject* when, Gate gate) {
        if (targets.empty() && controls.empty()) return; // a phase without conditions
        Work work(targets, controls);
        // Only now, for handles can change while qudits are brought together.
        std::vector<vantel::Condition> records;
        for (std::size_t i = 0; i < conditions; ++i) {
            const Condition::Term& term = find<Condition>(when)->terms[i];
            records.push_back({controls[i]->qudit.handle(), term.level, static_cast<unsigned char>(term.is_equal)});
        }
        work([&] { gate(vantel::Conditions(records)); });
    }
};

/// A finite number. To ask an object for its number can run any code, so that it comes before the qudits are
/// looked up.
double get_number(PyObject* object, const char* what) {
    if (PyBool_Check(object)) throw py::type_error(std::string(what) + " must be a number, not bool");
    const double number = PyFloat_AsDouble(object);
    if (number == -1 && PyErr_Occurred() != nullptr) {
        if (PyErr_ExceptionMatches(PyExc_TypeError) == 0) throw py::error_already_set();
        PyErr_Clear();
        throw py::type_error(std::string(what) + " must be a number, not " + Py_TYPE(object)->tp_name +
                             "; conditions are given as when=...");
    }
    if (!std::isfinite(number)) throw py::value_error(std::string(what) + " must be finite");
    return number;
}

/// A power or angle, reduced to the period of what it turns before it loses digits to single precision.
float reduced(double number, double period) {
    return static_cast<float>(std::abs(number) > period ? std::remainder(number, period) : number);
}

const std::shared_ptr<Member>& member_of(PyObject* object, const char* what) {
    return get_qudit(object, what).name->member();
}

template <void (*gate)(vantel::Qudit&, vantel::Conditions)> void plain(const char* name, const Arguments& arguments) {
    const auto [target, when] = arguments.in_order<2>(name, {"target", "when"}, 1, 1);
    const std::array targets{member_of(target, "target")};
    Place(targets, when).apply(when, [&](const vantel::Conditions& all) { gate(targets[0]->qudit, all); });
}

template <void (*gate)(vantel::Qudit&, float, vantel::Conditions)>
void power(const char* name, const Arguments& arguments) {
    const auto [target, given, when] = arguments.in_order<3>(name, {"target", "power", "when"}, 2, 1);
    const double number = given != nullptr ? get_number(given, "power") : 1;
    const std::array targets{member_of(target, "target")};
    const float exponent = reduced(number, targets[0]->qudit.dimension()); // whose d-th power is the identity
    Place(targets, when).apply(when, [&](const vantel::Conditions& all) { gate(targets[0]->qudit, exponent, all); });
}

std::array<std::shared_ptr<Member>, 2> two_targets(PyObject* first, PyObject* second) {
    std::array targets{member_of(first, "first"), member_of(second, "second")};
    if (targets[0] == targets[1]) throw py::value_error("a qudit cannot be exchanged with itself");
    if (targets[0]->qudit.dimension() != targets[1]->qudit.dimension())
        throw vantel::Error(vantel_different_dimensions, "the qudits have different dimensions");
    return targets;
}

void swap_levels(const char* name, const Arguments& arguments) {
    const auto [first, second, when] = arguments.in_order<3>(name, {"first", "second", "when"}, 2, 2);
    const auto targets = two_targets(first, second);
    Place(targets, when).apply(when, [&](const vantel::Conditions& all) {
        vantel::swap_levels(targets[0]->qudit, targets[1]->qudit, all);
    });
}

void i_swap(const char* name, const Arguments& arguments) {
    const auto [first, second, given, when] = arguments.in_order<4>(name, {"first", "second", "power", "when"}, 3, 2);
    const float exponent = reduced(given != nullptr ? get_number(given, "power") : 1, 4);
    const auto targets = two_targets(first, second);
    Place(targets, when).apply(when, [&](const vantel::Conditions& all) {
        vantel::i_swap(targets[0]->qudit, targets[1]->qudit, exponent, all);
    });
}

void phase_rotate(const char* name, const Arguments& arguments) {
    const auto [angle, when] = arguments.in_order<2>(name, {"angle", "when"}, 1, 2);
    const float radians = reduced(get_number(angle, "angle"), 2 * std::numbers::pi);
    if (when == Py_None)
        throw py::type_error("phase_rotate(): a phase of the whole state is none; say where by when=...");
    Place({}, when).apply(when, [&](const vantel::Conditions& all) { vantel::phase_rotate(all, radians); });
}

/// A gate that adds to the level of its last qudit what the levels of the others say.
template <auto gate, std::size_t N>
void sum_of(const char* name, const Arguments& arguments, const std::array<const char*, N + 1>& names) {
    const auto given = arguments.in_order<N + 1>(name, names, N, N);
    std::vector<std::shared_ptr<Member>> qudits;
    for (std::size_t i = 0; i < N; ++i) qudits.push_back(member_of(given[i], names[i]));
    for (std::size_t i = 0; i + 1 < N; ++i)
        if (qudits[i] == qudits.back()) throw vantel::Error(vantel_target_control_overlap, "a control is the target");
    const Members all_qudits = qudits;
    Place place(all_qudits.last(1), given[N]);
    place.joins(all_qudits.first(N - 1));
    place.apply(given[N], [&](const vantel::Conditions& all) {
        if constexpr (N == 2)
            gate(qudits[0]->qudit, qudits[1]->qudit, all);
        else
            gate(qudits[0]->qudit, qudits[1]->qudit, qudits[2]->qudit, all);
    });
}

template <auto gate> void sum(const char* name, const Arguments& arguments) {
    sum_of<gate, 2>(name, arguments, {"control", "target", "when"});
}

void toffoli(const char* name, const Arguments& arguments) {
    sum_of<vantel::toffoli, 3>(name, arguments, {"a", "b", "target", "when"});
}

void add(const char* name, const Arguments& arguments) {
    const auto [target, given, when] = arguments.in_order<3>(name, {"target", "steps", "when"}, 2, 2);
    const long wanted = get_integer(given, "steps");
    const std::array targets{member_of(target, "target")};
    const int steps = static_cast<int>(wanted % targets[0]->qudit.dimension());
    Place(targets, when).apply(when, [&](const vantel::Conditions& all) {
        vantel::add(targets[0]->qudit, steps, all);
    });
}

/// A name that can be the argument of a template.
template <std::size_t N> struct Text {
    constexpr Text(const char (&text)[N]) { std::ranges::copy(text, characters); }
    char characters[N];
};

/// The function as the interpreter calls it.
template <Text name, auto gate>
PyObject* entry(PyObject*, PyObject* const* values, Py_ssize_t by_place, PyObject* names) {
    try {
        gate(name.characters, Arguments{values, by_place, names});
        Py_RETURN_NONE;
    } catch (const std::exception&) {
        raise_in_python(std::current_exception());
        return nullptr;
    }
}

/// A row of the module's table. The text begins with the signature, which Python takes out of it.
template <Text name, auto gate> PyMethodDef method(const char* text) {
    const auto function = &entry<name, gate>;
    return {name.characters, reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(function)),
            METH_FASTCALL | METH_KEYWORDS, text};
}

/// Calls `act` with references to qudits in one joint state, all of one dimension if that is wanted.
void on_register(const py::args& arguments, bool one_dimension,
                 void (*act)(std::span<const std::reference_wrapper<vantel::Qudit>>)) {
    const QuditArguments qudits(arguments);
    if (one_dimension)
        for (const py::ssize_t dimension : qudits.dimensions)
            if (dimension != qudits.dimensions[0])
                throw vantel::Error(vantel_different_dimensions, "the qudits have different dimensions");
    Work work(qudits.members);
    std::vector<std::reference_wrapper<vantel::Qudit>> list;
    for (const auto& member : qudits.members) list.push_back(member->qudit);
    work([&] { act(list); });
}
} // namespace

void bind_gates(py::module_& module) {
    static std::array table{
        method<"hadamard", plain<vantel::hadamard>>("hadamard($module, target, *, when=None)\n--\n\n"
                                                    "The Fourier transform of a qudit's levels: level v goes "
                                                    "to the sum over k of exp(-2 pi i k v / d) / sqrt(d) "
                                                    "times level k."),
        method<"inverse_hadamard", plain<vantel::inverse_hadamard>>(
            "inverse_hadamard($module, target, *, when=None)\n--\n\n"
            "The inverse of hadamard(), with exp(+2 pi i k v / d)."),
        method<"negate", plain<vantel::negate>>("negate($module, target, *, when=None)\n--\n\n"
                                                "Level v goes to -v mod d."),
        method<"cycle", power<vantel::cycle<float>>>(
            "cycle($module, target, power=1.0, *, when=None)\n--\n\n"
            "Level v goes to v + 1 mod d, or that power of it: with w = exp(2 pi i / d), level v goes to the "
            "sum over m of "
            "(1/d) sum over k of w^(k (m - v - power)) times level m."),
        method<"shift", power<vantel::shift<float>>>("shift($module, target, power=1.0, *, when=None)\n--\n\n"
                                                     "Level v goes to v - 1 mod d: cycle() with -power."),
        method<"clock", power<vantel::clock<float>>>("clock($module, target, power=1.0, *, when=None)\n--\n\n"
                                                     "Level v is multiplied by exp(2 pi i v power / d)."),
        method<"phase_rotate", phase_rotate>("phase_rotate($module, angle, *, when)\n--\n\n"
                                             "Multiplies by exp(i angle), in radians, where the condition holds."),
        method<"swap_levels", swap_levels>("swap_levels($module, first, second, *, when=None)\n--\n\n"
                                           "Exchanges the levels of two qudits of one dimension."),
        method<"i_swap", i_swap>("i_swap($module, first, second, power=1.0, *, when=None)\n--\n\n"
                                 "With t = power pi/2, levels (p, q), p != q, go to cos t (p, q) + i sin t "
                                 "(q, p); equal ones stay."),
        method<"add", add>("add($module, target, steps, *, when=None)\n--\n\n"
                           "Level v goes to v + steps mod d, for any integer."),
        method<"sum", sum<vantel::sum>>("sum($module, control, target, *, when=None)\n--\n\n"
                                        "SUM: levels (c, t) go to (c, t + c mod d), with d the target's dimension."),
        method<"inverse_sum", sum<vantel::inverse_sum>>("inverse_sum($module, control, target, *, when=None)\n--\n\n"
                                                        "Levels (c, t) go to (c, t - c mod d)."),
        method<"toffoli", toffoli>("toffoli($module, a, b, target, *, when=None)\n--\n\n"
                                   "Levels (a, b, t) go to (a, b, t + a b mod d), with d the target's dimension."),
        PyMethodDef{},
    };
    if (PyModule_AddFunctions(module.ptr(), table.data()) != 0) throw py::error_already_set();

    module.def(
        "fourier_transform",
        [](const py::args& qudits) { on_register(qudits, true, [](auto list) { vantel::fourier_transform(list); }); },
        R"(The Fourier transform over a register of qudits of one dimension, the first the lowest digit.

With P the number of combinations, |x> goes to the sum over y of exp(2 pi i x y / P) / sqrt(P) times |y>.)");
    module.def(
        "inverse_fourier_transform",
        [](const py::args& qudits) {
            on_register(qudits, true, [](auto list) { vantel::inverse_fourier_transform(list); });
        },
        "The inverse of fourier_transform().");
    module.def(
        "prepare_ghz",
        [](const py::args& qudits) { on_register(qudits, false, [](auto list) { vantel::prepare_ghz(list); }); },
        "Takes qudits from level 0 to the sum over k of |k, k mod d2, k mod d3, ...> / sqrt(d1).");
    module.def(
        "prepare_bell",
        [](py::handle first, py::handle second, py::handle phase, py::handle offset) {
            const long phases = get_integer(phase, "phase"), offsets = get_integer(offset, "offset");
            const QuditArguments both(py::make_tuple(first, second));
            const int turn = static_cast<int>(phases % both.dimensions[0]);
            const int steps = static_cast<int>(offsets % both.dimensions[1]);
            Work work(both.members);
            work([&] { vantel::prepare_bell(both.members[0]->qudit, both.members[1]->qudit, turn, steps); });
        },
        py::arg("first"), py::arg("second"), py::arg("phase") = 0, py::arg("offset") = 0,
        R"(Takes two qudits from level 0 to a Bell state.

It is the sum over k of exp(2 pi i k phase / d1) |k, k + offset mod d2> / sqrt(d1).)");
}
} // namespace vantel::python

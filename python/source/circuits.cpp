// Recorded circuits. The class that users see is written in Python, in circuits.py; here is what it keeps and
// calls.
#include "objects.hpp"
#include <algorithm>
#include <chrono>
#include <map>
#include <pybind11/complex.h>
#include <pybind11/numpy.h>
#include <pybind11/stl.h>
#include <random>
#include <vantel_circuit_drawing.hpp>
#include <vantel_circuit_text.hpp>
#include <vantel_ensemble.hpp>

namespace vantel::python {
namespace {
/// A circuit; Python's side never changes one that it has given away.
struct Recorded {
    vantel::Circuit circuit;
};

/// The runs of a circuit, and what was made of them so far.
struct Running {
    std::shared_ptr<const vantel::Trials> trials;
};

Recorded& recorded(py::handle object) { return get<Recorded>(object, "a circuit", "vantel.Circuit"); }

/// A condition as Python's side has it: whether a value is asked, its place, a level, and whether it must be
/// equal.
using Asked = std::tuple<bool, std::size_t, int, bool>;
using Elements = py::array_t<std::complex<double>, py::array::c_style | py::array::forcecast>;

vantel::When when_of(const std::vector<Asked>& conditions) {
    std::vector<vantel::StepCondition> all;
    for (const auto& [on_value, place, level, is_equal] : conditions) all.push_back({on_value, place, level, is_equal});
    return vantel::When(std::move(all));
}

/// Records one step; a circuit that refuses it stays as it was.
void record(py::handle self, const std::string& action, const std::vector<std::size_t>& targets, double amount,
            const std::vector<Asked>& conditions, const std::vector<std::string>& values, const Elements& matrix) {
    vantel::Circuit& circuit = recorded(self).circuit;
    const auto* const form = std::ranges::find(vantel::detail::step_forms, action, &vantel::detail::StepForm::name);
    if (form == std::end(vantel::detail::step_forms)) throw std::invalid_argument("no step is called " + action);
    std::vector<vantel::Wire> wires;
    for (const std::size_t target : targets) wires.push_back({target});
    switch (form->action) {
    case vantel::Action::measure: circuit.measure(wires, values, when_of(conditions)); break;
    case vantel::Action::reset: circuit.reset(wires.at(0), values.at(0), when_of(conditions)); break;
    case vantel::Action::project: circuit.project(when_of(conditions), values.at(0)); break;
    case vantel::Action::unitary:
        std::ranges::reverse(wires); // NumPy's last index varies fastest, and the library's first qudit
        circuit.unitary(wires, {matrix.data(), matrix.data() + matrix.size()}, when_of(conditions));
        break;
    default: circuit.append(vantel::Step{form->action, targets, amount, when_of(conditions), {}, {}, {}});
    }
}

py::dict readings_of(const vantel::Readings& readings) {
    py::dict result;
    for (std::size_t i = 0; i < readings.names().size(); ++i)
        result[py::str(readings.names()[i])] = readings.numbers()[i];
    return result;
}

py::dict run(py::handle self, const py::args& arguments, std::uint64_t seed) {
    const vantel::Circuit circuit = recorded(self).circuit;
    const QuditArguments qudits(arguments);
    Work work(qudits.members);
    std::vector<std::reference_wrapper<vantel::Qudit>> list;
    for (const auto& member : qudits.members) list.push_back(member->qudit);
    const vantel::Readings readings = work([&] { return circuit.run(list, std::mt19937_64(seed)); });
    return readings_of(readings);
}

/// Makes the shots of numbers `from` up to `to`, and looks at signals of the system a few times a second.
py::dict tally(py::handle self, std::size_t from, std::size_t to, unsigned threads) {
    const std::shared_ptr<const vantel::Trials> trials = get<Running>(self, "trials", "vantel.Trials").trials;
    std::map<std::vector<int>, std::size_t> counts;
    constexpr unsigned most_threads = 256;
    threads = std::min(threads, most_threads);
    std::size_t at_once = 1;
    while (from < to) {
        const std::size_t end = std::min(to, from + at_once);
        const auto begun = std::chrono::steady_clock::now();
        {
            py::gil_scoped_release unlocked;
            const vantel::Ensemble part = trials->run(from, end, at_once > 8 ? threads : 1);
            for (const auto& [numbers, shots] : part.counts()) counts[numbers] += shots;
        }
        if (PyErr_CheckSignals() != 0) throw py::error_already_set();
        if (std::chrono::steady_clock::now() - begun < std::chrono::milliseconds(50)) at_once *= 2;
        from = end;
    }
    py::dict result;
    for (const auto& [numbers, shots] : counts) result[py::tuple(py::cast(numbers))] = shots;
    return result;
}
} // namespace

void bind_circuits(py::module_& module) {
    py::class_<Recorded> circuit(module, "Recorded", py::is_final());
    class_of<Recorded> = reinterpret_cast<PyTypeObject*>(circuit.ptr());
    circuit.def(py::init<>());
    circuit.def("copy", [](py::handle self) { return Recorded(recorded(self)); });
    circuit.def(
        "add_qudit",
        [](py::handle self, const std::string& name, int dimension) {
            return recorded(self).circuit.add_qudit(name, dimension).place;
        },
        py::arg("name"), py::arg("dimension"));
    circuit.def("record", record, py::arg("action"), py::arg("targets"), py::arg("amount"), py::arg("conditions"),
                py::arg("values"), py::arg("matrix"));
    circuit.def("append", [](py::handle self, py::handle other) {
        const vantel::Circuit more = recorded(other).circuit;
        recorded(self).circuit.append(more);
    });
    circuit.def("inverse", [](py::handle self) { return Recorded{recorded(self).circuit.inverse()}; });
    circuit.def("repeat",
                [](py::handle self, std::size_t times) { return Recorded{recorded(self).circuit.repeat(times)}; });
    circuit.def("qudits", [](py::handle self) {
        std::vector<std::pair<std::string, int>> list;
        for (const auto& qudit : recorded(self).circuit.qudits()) list.emplace_back(qudit.name, qudit.dimension);
        return list;
    });
    circuit.def("values", [](py::handle self) { return recorded(self).circuit.values(); });
    circuit.def("steps", [](py::handle self) { return recorded(self).circuit.steps().size(); });
    circuit.def("write", [](py::handle self) { return vantel::write_circuit(recorded(self).circuit); });
    circuit.def_static("read", [](const std::string& text) { return Recorded{vantel::read_circuit(text)}; });
    circuit.def("draw_text", [](py::handle self, bool box) {
        return vantel::draw_text(recorded(self).circuit, box ? vantel::Characters::box : vantel::Characters::ascii);
    });
    circuit.def("draw_svg", [](py::handle self) { return vantel::draw_svg(recorded(self).circuit); });
    circuit.def("run",
                [](py::handle self, std::uint64_t seed, const py::args& qudits) { return run(self, qudits, seed); });
    circuit.def("trials", [](py::handle self, std::uint64_t seed) {
        const vantel::Circuit runs = recorded(self).circuit;
        py::gil_scoped_release unlocked;
        return Running{std::make_shared<const vantel::Trials>(runs, seed)};
    });

    py::class_<Running> running(module, "Running", py::is_final());
    class_of<Running> = reinterpret_cast<PyTypeObject*>(running.ptr());
    running.def("repeatable",
                [](py::handle self) { return get<Running>(self, "trials", "vantel.Trials").trials->repeatable(); });
    running.def("tally", tally, py::arg("start"), py::arg("stop"), py::arg("threads") = 0);
    seal<Recorded>();
    seal<Running>();
}
} // namespace vantel::python

// Matrices of one's own, states of one's own, and noise.
#include "objects.hpp"
#include "tables.hpp"
#include <algorithm>
#include <complex>
#include <pybind11/complex.h>
#include <pybind11/numpy.h>
#include <vantel_noise.hpp>

namespace vantel::python {
namespace {
using Elements = py::array_t<std::complex<double>, py::array::c_style | py::array::forcecast>;

std::vector<vantel::Complex> elements_of(const Elements& array) { return {array.data(), array.data() + array.size()}; }

/// The records of a condition, whose qudits stand behind the targets in `members`.
std::vector<vantel::Condition> records_of(py::handle when, const std::vector<std::shared_ptr<Member>>& members,
                                          std::size_t targets) {
    std::vector<vantel::Condition> records;
    if (!when.is_none())
        for (const Condition::Term& term : find<Condition>(when.ptr())->terms)
            records.push_back({members[targets + records.size()]->qudit.handle(), term.level,
                               static_cast<unsigned char>(term.is_equal)});
    return records;
}

std::size_t unitary(const Elements& matrix, const py::args& arguments, py::handle when) {
    const QuditArguments qudits(arguments);
    check_table(qudits.combinations, qudits.combinations);
    std::vector<int> dimensions(qudits.dimensions.rbegin(), qudits.dimensions.rend());
    const vantel::Unitary taken_apart(std::move(dimensions), elements_of(matrix));
    std::vector<std::shared_ptr<Member>> members = qudits.members;
    if (!when.is_none())
        for (const Condition::Term& term : get<Condition>(when, "when", "vantel.Condition").terms) {
            members.push_back(term.name->member());
            if (std::ranges::find(qudits.members, members.back()) != qudits.members.end())
                throw vantel::Error(vantel_target_control_overlap, "a condition names a target of the gate");
        }
    Work work(members, {}, 0, static_cast<double>(qudits.combinations * qudits.combinations));
    const std::vector<vantel::Condition> records = records_of(when, members, qudits.members.size());
    work([&] { taken_apart.apply(qudits.reversed(), records); });
    return taken_apart.gates();
}

/// A channel on one qudit, of its dimension.
template <class Make, class Apply> auto on(py::handle target, Make make, Apply apply) {
    const std::array members{get_qudit(target, "target").name->member()};
    const auto channel = make(members[0]->qudit.dimension());
    Work work(members);
    return work([&] { return apply(channel, members[0]->qudit); });
}

template <vantel::WeylChannel (*make)(int, double)> py::tuple weyl(py::handle target, double p, double u) {
    if (!(u >= 0 && u < 1)) throw py::value_error("a random number that is not in [0, 1)");
    const vantel::Weyl drawn = on(
        target, [p](int dimension) { return make(dimension, p); },
        [u](const vantel::WeylChannel& channel, vantel::Qudit& qudit) {
            const vantel::Weyl operation = channel.draw(u);
            operation.apply(qudit);
            return operation;
        });
    return py::make_tuple(drawn.shifts, drawn.clocks);
}

std::size_t apply_kraus(const vantel::KrausChannel& channel, vantel::Qudit& qudit) { return channel.apply(qudit); }
} // namespace

void bind_channels(py::module_& module) {
    module.def("unitary", unitary, py::arg("matrix"), py::kw_only(), py::arg("when") = py::none(),
               R"(Applies a unitary matrix of one's own, taken apart into gates; returns how many rotations and phases.

matrix: of shape (P, P), in the order of density_matrix() and numpy.kron; the element in row r and column c is the amplitude
from combination c to combination r. Raises ValueError for one that is not unitary within 1e-6.
A helper takes one more place among the ten for the time of the call, unless all qudits have two levels.)");
    module.def(
        "prepare",
        [](const Elements& state, const py::args& arguments) {
            const QuditArguments qudits(arguments);
            check_table(qudits.combinations, 1);
            if (state.size() != static_cast<py::ssize_t>(qudits.combinations))
                throw py::value_error("the state must have " + std::to_string(qudits.combinations) + " elements");
            const std::vector<vantel::Complex> elements = elements_of(state);
            Work work(qudits.members, {}, 0, static_cast<double>(qudits.combinations));
            work([&] { vantel::prepare(qudits.reversed(), std::span<const vantel::Complex>(elements)); });
        },
        py::arg("state"), R"(Takes qudits from level 0 to a pure state.

state: P amplitudes of any norm but 0, of any shape, in the order of amplitudes().)");
    module.def("depolarise_by", weyl<vantel::depolarising>, py::arg("target"), py::arg("p"), py::arg("u"));
    module.def("dephase_by", weyl<vantel::dephasing>, py::arg("target"), py::arg("p"), py::arg("u"));
    module.def(
        "damp",
        [](py::handle target, double gamma) {
            return on(
                target, [gamma](int dimension) { return vantel::amplitude_damping(dimension, gamma); }, apply_kraus);
        },
        py::arg("target"), py::arg("gamma"),
        R"(Amplitude damping: level v holds v quanta, each of which is lost with probability gamma.

Draws from the system's randomness; returns how many were lost. A helper takes places for the time of the call.)");
    module.def(
        "kraus",
        [](py::handle target, const Elements& operators) {
            if (operators.ndim() != 3 || operators.shape(1) != operators.shape(2))
                throw py::value_error("the operators must have the shape (count, d, d)");
            const auto size = static_cast<std::size_t>(operators.shape(1) * operators.shape(2));
            std::vector<std::vector<vantel::Complex>> list;
            for (py::ssize_t i = 0; i < operators.shape(0); ++i) {
                const auto* const first = operators.data() + static_cast<std::size_t>(i) * size;
                list.emplace_back(first, first + size);
            }
            return on(
                target, [&](int dimension) { return vantel::KrausChannel(dimension, list); }, apply_kraus);
        },
        py::arg("target"), py::arg("operators"),
        R"(Any channel, by its Kraus operators: applies one of them by its probability and returns which.

operators: an array of shape (count, d, d), of at most 100 whose K* K add up to the identity within 1e-6.)");
}
} // namespace vantel::python

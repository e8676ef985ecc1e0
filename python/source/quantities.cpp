// What is computed of a state without measuring it.
#include "objects.hpp"
#include "tables.hpp"
#include <algorithm>
#include <complex>
#include <pybind11/complex.h>
#include <pybind11/numpy.h>
#include <vantel_quantities.hpp>

namespace vantel::python {
namespace {
using ComplexArray = py::array_t<std::complex<double>, py::array::c_style | py::array::forcecast>;

/// Computes `quantity` of the listed qudits, whose density matrix must not be too large.
template <class Quantity> auto of(const py::args& arguments, Quantity quantity) {
    const QuditArguments qudits(arguments);
    check_table(qudits.combinations, qudits.combinations);
    const double elements = static_cast<double>(qudits.combinations);
    Work work(qudits.members, {}, 0, elements * elements);
    return work([&] { return quantity(vantel::QuditList(qudits.reversed())); });
}

py::array_t<double> array_of(const std::vector<double>& numbers) {
    return py::array_t<double>(static_cast<py::ssize_t>(numbers.size()), numbers.data());
}

std::vector<std::complex<double>> elements_of(const ComplexArray& array) {
    std::vector<std::complex<double>> elements(array.data(), array.data() + array.size());
    if (!std::ranges::all_of(elements, [](auto z) { return std::isfinite(z.real()) && std::isfinite(z.imag()); }))
        throw py::value_error("an element is not finite");
    return elements;
}

/// The members of a side of a bipartition: one qudit, or some.
py::args side(py::handle qudits) {
    if (find<Qudit>(qudits.ptr()) != nullptr) return py::make_tuple(qudits);
    return py::args(py::tuple(py::reinterpret_borrow<py::object>(qudits)));
}
} // namespace

void bind_quantities(py::module_& module) {
    module.def(
        "amplitudes",
        [](const py::args& qudits) {
            const auto found = of(qudits, [](const vantel::QuditList& list) { return vantel::amplitudes(list); });
            py::array_t<std::complex<double>> result(QuditArguments(qudits).dimensions);
            std::ranges::copy(found, result.mutable_data());
            return result;
        },
        R"(The amplitudes of a pure state, without a global phase: the largest is real and positive.

Returns an array of complex128 with one axis for each argument, in their order. Raises ValueError for a mixed state, as
that of qudits that are entangled with others.)");
    module.def(
        "purity", [](const py::args& qudits) { return of(qudits, vantel::purity); },
        "The purity tr(rho^2): 1 for a pure state, 1 / P for the completely mixed one.");
    module.def(
        "entropy", [](const py::args& qudits) { return of(qudits, vantel::entropy); },
        "The von Neumann entropy -tr(rho ln rho), in nats.");
    module.def(
        "entropy_in_bits", [](const py::args& qudits) { return of(qudits, vantel::entropy_in_bits); },
        "The von Neumann entropy -tr(rho log2 rho), in bits.");
    module.def(
        "spectrum", [](const py::args& qudits) { return array_of(of(qudits, vantel::spectrum)); },
        "The eigenvalues of the density matrix, an array of shape (P,), the largest first.");
    module.def(
        "expectation",
        [](const ComplexArray& matrix, const py::args& qudits) {
            const auto side = static_cast<py::ssize_t>(QuditArguments(qudits).combinations);
            if (matrix.ndim() != 2 || matrix.shape(0) != side || matrix.shape(1) != side)
                throw py::value_error("the matrix must have the shape (" + std::to_string(side) + ", " +
                                      std::to_string(side) + ")");
            const auto elements = elements_of(matrix);
            return of(qudits, [&](const vantel::QuditList& list) { return vantel::expectation(list, elements); });
        },
        py::arg("matrix"),
        R"(The expectation value tr(rho A), a complex number; real but for rounding if A is Hermitian.

matrix: A, of shape (P, P), in the order of density_matrix() and numpy.kron.)");
    module.def(
        "fidelity",
        [](const ComplexArray& state, const py::args& qudits) {
            if (state.size() != static_cast<py::ssize_t>(QuditArguments(qudits).combinations))
                throw py::value_error("the state must have " + std::to_string(QuditArguments(qudits).combinations) +
                                      " elements");
            const auto elements = elements_of(state);
            return of(qudits, [&](const vantel::QuditList& list) {
                return vantel::fidelity(list, std::span<const vantel::Complex>(elements));
            });
        },
        py::arg("state"), R"(The fidelity <psi|rho|psi> with a pure state, 0 .. 1.

state: psi, P elements of any norm but 0, in the order of amplitudes(), of any shape.)");
    module.def(
        "schmidt",
        [](py::handle left, py::handle right) {
            const py::args lefts = side(left), rights = side(right);
            const QuditArguments on_left(lefts), on_right(rights);
            const py::args all = py::args(lefts + rights); // refuses a qudit on both sides
            return array_of(of(all, [&](const vantel::QuditList&) {
                return vantel::schmidt(on_left.reversed(), on_right.reversed());
            }));
        },
        py::arg("left"), py::arg("right"),
        R"(The Schmidt coefficients of a pure state between two sides, the largest first.

left, right: a qudit, or a sequence of them. Raises ValueError if both sides together are not in a pure state.)");
}
} // namespace vantel::python

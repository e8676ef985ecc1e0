// What is read of a state: measurements, projections, tables and density matrices.
#include "objects.hpp"
#include "tables.hpp"
#include <algorithm>
#include <complex>
#include <pybind11/complex.h>
#include <pybind11/numpy.h>

namespace vantel::python {
void check_table(std::size_t rows, std::size_t columns) {
    if (rows > most_elements / columns)
        throw py::value_error("a table of " + std::to_string(rows) + (columns > 1 ? " rows and columns" : " rows") +
                              ", where at most " + std::to_string(most_elements) +
                              " elements can be asked for: list fewer qudits");
}

namespace {
py::tuple measure(const py::args& arguments) {
    const QuditArguments qudits(arguments);
    std::vector<int> levels;
    const std::shared_ptr<JointState> joint = [&] {
        Work work(qudits.members);
        std::vector<std::reference_wrapper<vantel::Qudit>> list;
        for (const auto& member : qudits.members) list.push_back(member->qudit);
        levels = work([&] { return vantel::measure(list); });
        return qudits.members[0]->joint;
    }();
    // A dropped qudit that was entangled with these can stand in a definite level now.
    if (std::ranges::any_of(joint->members, [](const auto& member) { return member->dropped; })) joint->let_go();
    py::tuple result(levels.size());
    for (std::size_t i = 0; i < levels.size(); ++i) result[i] = levels[i];
    return result;
}

int reset(py::handle target) {
    const int level = py::cast<int>(measure(py::make_tuple(target))[0]);
    const std::array targets{get_qudit(target).name->member()};
    Work work(targets);
    work([&] { vantel::add(targets[0]->qudit, -level); });
    return level;
}

bool project(py::handle when) {
    const Condition& condition = get<Condition>(when, "when", "vantel.Condition");
    std::vector<std::shared_ptr<Member>> members;
    for (const Condition::Term& term : condition.terms) members.push_back(term.name->member());
    Work work(members, {}, 1);
    std::vector<vantel::Condition> records;
    for (std::size_t i = 0; i < members.size(); ++i)
        records.push_back({members[i]->qudit.handle(), condition.terms[i].level,
                           static_cast<unsigned char>(condition.terms[i].is_equal)});
    return work([&] { return vantel::project(records); });
}

py::array_t<double> probabilities(const py::args& arguments) {
    const QuditArguments qudits(arguments);
    check_table(qudits.combinations, 1);
    py::array_t<double> result(qudits.dimensions);
    double* const rows = result.mutable_data();
    Work work(qudits.members, {}, 0, static_cast<double>(qudits.combinations));
    const vantel::Outcomes table = work([&] { return vantel::probabilities(qudits.reversed()); });
    std::fill_n(rows, qudits.combinations, 0.0);
    for (std::size_t i = 0; i < table.size(); ++i) rows[i] = table[i].probability;
    return result;
}

py::array_t<std::complex<double>> density_matrix(const py::args& arguments) {
    const QuditArguments qudits(arguments);
    const std::size_t side = qudits.combinations;
    check_table(side, side);
    py::array_t<std::complex<double>> result({side, side});
    std::complex<double>* const elements = result.mutable_data();
    Work work(qudits.members, {}, 0, static_cast<double>(side) * static_cast<double>(side));
    const vantel::DensityMatrix matrix = work([&] { return vantel::reduced_density_matrix(qudits.reversed()); });
    for (std::size_t i = 0; i < side * side; ++i) elements[i] = {matrix.real()[i], matrix.imaginary()[i]};
    return result;
}
} // namespace

void bind_readouts(py::module_& module) {
    module.def("measure", measure, R"(Measures qudits and collapses their joint state onto the outcome.

Returns a tuple of levels, one for each argument. The outcome comes of the system's randomness.)");
    module.def("reset", reset, py::arg("target"), "Measures a qudit and takes it back to level 0; returns the level.");
    module.def("project", project, py::arg("when"),
               R"(Asks whether a condition holds, and projects the joint state onto the answer.

It can be asked as often as one likes. One more place among the ten is needed for the time of the call.)");
    module.def("probabilities", probabilities,
               R"(The probability of every combination of levels, without measuring.

Returns an array of float64 with one axis for each argument, in their order: `probabilities(a, b)[i, j]` is that of a in
level i and b in level j. The numbers have the precision of float32, about 1e-7.)");
    module.def("density_matrix", density_matrix,
               R"(The density matrix of the arguments, all other qudits traced out.

Returns an array of complex128 and shape (P, P), with P the number of combinations of levels. Rows and columns stand in
the order of `probabilities(...).ravel()` and of `numpy.kron`: the last argument varies fastest. The numbers have the
precision of float32, about 1e-7.)");
}
} // namespace vantel::python

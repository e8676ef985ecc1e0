// Shots: what many measurements of equal states would find.
#include "objects.hpp"
#include "tables.hpp"
#include <algorithm>
#include <pybind11/numpy.h>
#include <random>
#include <vantel_sampling.hpp>

namespace vantel::python {
namespace {
/// A generator that starts from a seed, or without one from the system's randomness.
std::mt19937_64 generator_of(py::handle seed) {
    if (!seed.is_none()) {
        const long number = get_integer(seed, "seed");
        if (number < 0) throw py::value_error("seed must not be negative");
        return std::mt19937_64(static_cast<std::uint64_t>(number));
    }
    std::random_device system;
    std::seed_seq words{system(), system(), system(), system(), system(), system(), system(), system()};
    return std::mt19937_64(words);
}

std::size_t shots_of(py::handle shots) {
    const long number = get_integer(shots, "shots");
    if (number < 0) throw py::value_error("shots must not be negative");
    return static_cast<std::size_t>(number);
}

/// The library's table of outcomes, whose first qudit varies fastest, so that shots are the same as in C++.
vantel::OutcomeSampler sampler_of(const QuditArguments& qudits) {
    check_table(qudits.combinations, 1);
    Work work(qudits.members, {}, 0, static_cast<double>(qudits.combinations));
    std::vector<std::reference_wrapper<vantel::Qudit>> list;
    for (const auto& member : qudits.members) list.push_back(member->qudit);
    return work([&] { return vantel::OutcomeSampler(list); });
}

/// Draws in parts, between which Python can be interrupted.
template <class Part> void in_parts(std::size_t shots, Part part) {
    constexpr std::size_t at_once = 1 << 18;
    for (std::size_t done = 0; done < shots; done += at_once) {
        {
            py::gil_scoped_release unlocked;
            part(done, std::min(at_once, shots - done));
        }
        if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    }
}

py::array_t<std::int8_t> sample(const py::args& arguments, py::handle shots, py::handle seed) {
    const std::size_t count = shots_of(shots), width = arguments.size();
    constexpr std::size_t most_shots = std::size_t{1} << 32;
    if (count > most_shots / std::max<std::size_t>(width, 1))
        throw py::value_error("too many shots to keep: count them with counts()");
    std::mt19937_64 generator = generator_of(seed);
    const vantel::OutcomeSampler sampler = sampler_of(QuditArguments(arguments));
    py::array_t<std::int8_t> result({count, width});
    std::int8_t* const levels = result.mutable_data();
    in_parts(count, [&](std::size_t from, std::size_t more) {
        for (std::size_t shot = from; shot < from + more; ++shot)
            std::ranges::transform(sampler.levels(sampler(generator)), levels + shot * width,
                                   [](int level) { return static_cast<std::int8_t>(level); });
    });
    return result;
}

py::object counts(const py::args& arguments, py::handle shots, py::handle seed) {
    const std::size_t count = shots_of(shots);
    std::mt19937_64 generator = generator_of(seed);
    const vantel::OutcomeSampler sampler = sampler_of(QuditArguments(arguments));
    std::vector<std::size_t> tally(sampler.size());
    in_parts(count, [&](std::size_t, std::size_t more) {
        for (std::size_t shot = 0; shot < more; ++shot) ++tally[sampler(generator)];
    });
    py::object counter = py::module_::import("collections").attr("Counter")();
    for (std::size_t row = 0; row < tally.size(); ++row)
        if (tally[row] > 0) {
            const auto levels = sampler.levels(row);
            py::tuple key(levels.size());
            for (std::size_t i = 0; i < levels.size(); ++i) key[i] = levels[i];
            counter[key] = tally[row];
        }
    return counter;
}
} // namespace

void bind_sampling(py::module_& module) {
    module.def("sample", sample, py::kw_only(), py::arg("shots"), py::arg("seed") = py::none(),
               R"(Draws what `shots` measurements of equal states would find; the state stays as it is.

Returns an array of int8 and shape (shots, number of arguments), of levels.
seed: an integer, 0 .. 2^63 - 1; the same seed gives the same shots, in C++ too (of std::mt19937_64). None: the system's
randomness.)");
    module.def("counts", counts, py::kw_only(), py::arg("shots"), py::arg("seed") = py::none(),
               R"(Counts what `shots` measurements of equal states would find; the state stays as it is.

Returns a collections.Counter with tuples of levels as keys: of the shots that sample() draws with the same seed.)");
}
} // namespace vantel::python

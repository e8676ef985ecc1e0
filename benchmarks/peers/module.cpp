/// The contenders that are C++, for the Python program that holds them beside NumPy in one process.
#include "contender.hpp"
#include <pybind11/complex.h>
#include <pybind11/numpy.h>
#include <pybind11/stl.h>

namespace {
namespace py = pybind11;
using peers::Act;
using peers::Amplitude;
using peers::Contender;
using peers::Register;
using peers::Step;

using Array = py::array_t<Amplitude, py::array::c_style | py::array::forcecast>;

Array array(const std::vector<Amplitude>& list) { return Array(static_cast<py::ssize_t>(list.size()), list.data()); }

const std::pair<const char*, Act> acts[] = {{"anew", Act::anew},
                                            {"fourier", Act::fourier},
                                            {"inverse_fourier", Act::inverse_fourier},
                                            {"cycle", Act::cycle},
                                            {"clock", Act::clock},
                                            {"phase", Act::phase},
                                            {"swap", Act::swap},
                                            {"i_swap", Act::i_swap},
                                            {"sum", Act::sum},
                                            {"transform", Act::transform},
                                            {"probabilities", Act::probabilities},
                                            {"matrix", Act::matrix},
                                            {"pair", Act::pair}};

void run(Contender& contender, const std::vector<Step>& steps, int times) {
    for (; times > 0; --times)
        for (const Step& step : steps) contender.apply(step);
}
} // namespace

PYBIND11_MAKE_OPAQUE(std::vector<Step>)

PYBIND11_MODULE(vantel_peers, module) {
    py::class_<std::vector<Step>>(module, "Program")
        .def(py::init<>())
        .def("add", [](std::vector<Step>& steps, const std::string& act, std::vector<std::size_t> qudits, float amount,
                       std::vector<std::pair<std::size_t, int>> when) {
            for (const auto& [name, value] : acts)
                if (act == name) return steps.push_back({value, std::move(qudits), amount, std::move(when)});
            throw std::invalid_argument(act);
        });

    py::class_<Contender>(module, "Contender")
        .def("load",
             [](Contender& contender, const Array& state) {
                 contender.load({state.data(), state.data() + state.size()});
             })
        .def("run", run)
        .def("amplitudes", [](const Contender& contender) { return array(contender.amplitudes()); })
        .def("read", [](const Contender& contender) { return array(contender.read()); });

    const std::pair<const char*, std::unique_ptr<Contender> (*)(const Register&)> makers[] = {
        {"library", peers::library},     {"by_hand", peers::by_hand},
        {"same_bits", peers::same_bits}, {"same_entries", peers::same_entries},
        {"bare_pass", peers::bare_pass}, {"by_eigen", peers::by_eigen},
        {"by_fftw", peers::by_fftw},     {"by_libquantum", peers::by_libquantum}};
    for (const auto& [name, maker] : makers)
        module.def(name, [maker = maker](std::size_t dimension, std::size_t qudits) {
            return maker({dimension, qudits});
        });
}

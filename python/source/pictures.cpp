// Pictures of states, by the drawing library.
#include "objects.hpp"
#include "tables.hpp"
#include <cstdio>
#include <cstdlib>
#include <new>
#include <pybind11/stl.h>
#include <vantel_draw.h>

namespace vantel::python {
namespace {
/// What a function writes into a stream.
std::string written(int (*draw)(FILE*, const VantelPicture*), const VantelPicture& picture) {
    char* text = nullptr;
    std::size_t size = 0;
    FILE* const stream = open_memstream(&text, &size);
    if (stream == nullptr) throw std::bad_alloc();
    int failed = draw(stream, &picture);
    failed = std::fclose(stream) != 0 || failed != 0;
    const std::unique_ptr<char, decltype(&std::free)> owned(text, std::free);
    if (failed != 0) throw std::bad_alloc();
    return {text, size};
}
} // namespace

void bind_pictures(py::module_& module) {
    module.def(
        "draw",
        [](const py::args& arguments, const std::string& title, const std::vector<std::string>& names) {
            const QuditArguments qudits(arguments);
            check_table(qudits.combinations, qudits.combinations);
            if (names.size() != qudits.members.size()) throw py::value_error("a name is needed for each qudit");
            std::vector<const char*> labels;
            for (const std::string& name : names) labels.push_back(name.c_str());
            const std::vector<int> dimensions(qudits.dimensions.begin(), qudits.dimensions.end());
            std::array<std::string, 3> drawn;
            {
                Work work(qudits.members, {}, 0, static_cast<double>(qudits.combinations * qudits.combinations));
                std::vector<std::reference_wrapper<vantel::Qudit>> list;
                for (const auto& member : qudits.members) list.push_back(member->qudit);
                const vantel::DensityMatrix matrix = work([&] { return vantel::reduced_density_matrix(list); });
                const VantelPicture picture{title.c_str(), dimensions.data(),  dimensions.size(),
                                            matrix.real(), matrix.imaginary(), labels.data()};
                drawn = {written(vantel_draw_text, picture), written(vantel_draw_outcomes_svg, picture),
                         written(vantel_draw_density_svg, picture)};
            }
            return py::make_tuple(drawn[0], drawn[1], drawn[2]);
        },
        py::kw_only(), py::arg("title"), py::arg("names"));
}
} // namespace vantel::python

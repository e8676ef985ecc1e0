#include <array>

#include "gates/exchange.hpp"
#include "gates/frame.hpp"
#include "state/builds.hpp"
#include "state/exceptions.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

namespace {

/// The new label of a selected entry, with the dits of two qudits exchanged.
struct Exchanged {
    Exchange exchange;

    template <class Word> Word operator()(Word values, Word /*dimensions*/, Word selected) const {
        return values ^ (exchange.difference(values) & selected);
    }

    /// Dimensions differ only in a label whose own ones are not those of the first entry.
    template <class Word> [[nodiscard]] Word is_odd(Word /*values*/, Word dimensions) const {
        return exchange.difference(dimensions);
    }

    void one(PackedAmplitude& entry, bool selected) const {
        if (!selected)
            return;
        entry.values ^= exchange.difference(entry.values);
        entry.dimensions ^= exchange.difference(entry.dimensions);
    }
};

void exchange(std::span<PackedAmplitude> entries, SlotLayout layout, int first, int second,
              const std::vector<Predicate>& controls) {
    relabel_selected(entries, ControlTest(controls, layout), Exchanged{Exchange(layout, first, second)});
    guard_size(entries.size());
}

} // namespace

template <class Label> void State<Label>::swap(int first, int second, std::vector<Predicate> controls) {
    refuse_overlap(std::array{first, second}, controls,
                   "Swap operation has overlapping targets and controls");
    if (qudit_dimension(first) != qudit_dimension(second))
        throw DifferentDimensions("Targets of swap operation have different dimensions");
    exchange(packed_view(amplitudes), Label::layout, first, second, controls);
}

VANTEL_INSTANTIATE(void, swap, (int, int, std::vector<Predicate>))

} // namespace vantel::qudit

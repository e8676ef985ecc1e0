#pragma once

#include "reference/literal_readout.hpp"
#include <utility>

namespace vantel::reference {
class LiteralState : public LiteralReadout {
public:
    using LiteralReadout::LiteralReadout;

    void phase_rotate(const Controls& controls, float angle) {
        const float sine = std::sin(angle);
        const float cosine = std::cos(angle);
        const Complex factor(static_cast<double>(cosine), static_cast<double>(sine));
        for (Entry& entry : entries_)
            if (controls_hold(entry, controls)) entry.amplitude = entry.amplitude * factor;
        guard_size();
    }

    void shift(const Ints& targets, const Controls& controls) {
        refuse_overlap(targets, controls, "Shift operation has overlapping targets and controls");
        walk(targets, controls, [](Entry&, Dit& dit) { raise(dit, dit.dimension - 1); });
        guard_size();
    }

    void shift(const Ints& targets, float fraction, const Controls& controls) {
        refuse_overlap(targets, controls, "Fractional shift operation has overlap targets and controls");
        hadamard(targets, controls);
        clock(targets, fraction, controls);
        inverse_hadamard(targets, controls);
        guard_size();
    }

    void cycle(const Ints& targets, float fraction, const Controls& controls) {
        refuse_overlap(targets, controls, "Fractional cycle operation has overlapping targets and controls");
        hadamard(targets, controls);
        clock(targets, -fraction, controls);
        inverse_hadamard(targets, controls);
        guard_size();
    }

    void cycle(const Ints& targets, const Controls& controls) {
        refuse_overlap(targets, controls, "Cycle operation has overlapping targets and controls");
        walk(targets, controls, [](Entry&, Dit& dit) { raise(dit, 1); });
        guard_size();
    }

    void clock(const Ints& targets, const Controls& controls) {
        refuse_overlap(targets, controls, "Clock operation has overlapping targets and controls");
        walk(targets, controls,
             [](Entry& entry, const Dit& dit) { turn(entry, dit.dimension, static_cast<double>(dit.value)); });
    }

    void clock(const Ints& targets, float fraction, const Controls& controls) {
        refuse_overlap(targets, controls, "Fractional Clock operation has overlapped targets and controls");
        walk(targets, controls, [=](Entry& entry, const Dit& dit) {
            const float steps = static_cast<float>(dit.value) * fraction;
            turn(entry, dit.dimension, static_cast<double>(steps));
        });
    }

    void hadamard(const Ints& targets, const Controls& controls) {
        refuse_overlap(targets, controls, "Hadamard operation has overlapping targets and controls");
        transform(targets, controls, 1.0);
    }

    void inverse_hadamard(const Ints& targets, const Controls& controls) {
        refuse_overlap(targets, controls, "inverse-Hadamard operation has overlapping targets and controls");
        transform(targets, controls, -1.0);
    }

    void swap(int first, int second, const Controls& controls) {
        refuse_overlap({first, second}, controls, "Swap operation has overlapping targets and controls");
        if (qudit_dimension(first) != qudit_dimension(second))
            throw qudit::DifferentDimensions("Targets of swap operation have different dimensions");
        for (Entry& entry : entries_)
            if (controls_hold(entry, controls)) std::swap(slot(entry, first), slot(entry, second));
        guard_size();
    }

    void i_swap(int first, int second, float fraction, const Controls& controls) {
        refuse_overlap({first, second}, controls, "Fractional i-swap operation has overlapping targets and controls");
        if (qudit_dimension(first) != qudit_dimension(second))
            throw qudit::DifferentDimensions("Targets of fractional-i-swap operation have different dimensions");
        const double theta = static_cast<double>(fraction) * 1.5707963267948966;
        const std::size_t n = entries_.size();
        for (std::size_t i = 0; i < n; ++i) {
            Entry twin = entries_[i];
            if (!controls_hold(twin, controls) || slot(twin, first).value == slot(twin, second).value) continue;
            entries_[i].amplitude = twin.amplitude * Complex(std::cos(theta), 0.0);
            twin.amplitude = twin.amplitude * Complex(0.0, std::sin(theta));
            std::swap(slot(twin, first), slot(twin, second));
            entries_.push_back(twin);
        }
        reduce(entries_);
        guard_size("State size exceeds maximum allowed size");
    }

    // Returns the former last index and the freed one. An index that is no slot's overwrites nothing;
    // the final dit goes all the same.
    std::pair<int, int> free_qudit(int index) {
        Entries entries = entries_;
        const int last = static_cast<int>(num_qudits()) - 1;
        for (Entry& entry : entries) {
            if (0 <= index && index < last) slot(entry, index) = slot(entry, last);
            entry.dits.pop_back();
        }
        *this = LiteralState({dimension(), num_qudits() - 1}, entries);
        return {last, index};
    }

private:
    static void refuse_overlap(const Ints& targets, const Controls& controls, const char* text) {
        for (int target : targets)
            for (const auto& control : controls)
                if (target == control.qudit_index) throw qudit::TargetControlOverlap(text);
    }

    void guard_size(const char* text = "State size exceeded maximum allowed size") const {
        if (entries_.size() > max_entries) throw qudit::StateSizeExceeded(text);
    }

    template <class Act> void walk(const Ints& targets, const Controls& controls, Act act) {
        for (Entry& entry : entries_)
            if (controls_hold(entry, controls))
                for (int target : targets) act(entry, slot(entry, target));
    }

    static void raise(Dit& dit, std::uint64_t added) {
        if (added >= dit.dimension) throw EndOfProcess();
        dit.value = (dit.value + added) % dit.dimension;
    }

    static void turn(Entry& entry, std::uint64_t dimension, double steps) {
        const double theta = (6.283185307179586 / static_cast<double>(dimension)) * steps;
        entry.amplitude = entry.amplitude * Complex(std::cos(theta), std::sin(theta));
    }

    void transform(const Ints& targets, const Controls& controls, double sign) {
        for (int target : targets) entries_ = hadamard_no_reduce(entries_, target, controls, sign);
        reduce(entries_);
        guard_size();
    }
};

inline LiteralState tensor_product(const LiteralState& a, const LiteralState& b) {
    Entries product;
    for (const Entry& x : a.basis_amplitudes())
        for (const Entry& y : b.basis_amplitudes()) {
            product.push_back({x.dits, x.amplitude * y.amplitude});
            product.back().dits.insert(product.back().dits.end(), y.dits.begin(), y.dits.end());
        }
    return {{std::max(a.dimension(), b.dimension()), a.num_qudits() + b.num_qudits()}, product};
}
} // namespace vantel::reference

/// The walk that the gates that turn phases share.
#pragma once

#include "algorithms/complex_product.hpp"
#include "gates/frame.hpp"

namespace vantel::qudit {
/// A number that stands twice, so that either half of a vector can be taken from where it is. As words, since gcc joins
/// halves of those in one cheap instruction and halves of doubles in a dear one.
using Doubled = FourWords;
[[gnu::always_inline]] inline Doubled doubled(Parts number) noexcept {
    return reinterpret_cast<FourWords>(joined(number, number));
}
inline Factor factor_of(const Doubled& number) noexcept { return Factor(reinterpret_cast<const StoredParts&>(number)); }

/// Multiplies the amplitudes of all selected entries. A group of four of which none is selected is passed over.
/// @param gate  gate.factor(entry), Doubled, is the factor of an entry whose dimensions have gate.top in gate.field;
///              gate.any_factor(entry) is that of an entry of any kind
template <class Rephasing>
void rephase_selected(std::span<PackedAmplitude> entries, const ControlTest& controls_hold, const Rephasing& given) {
    controls_hold.walk(entries, [&given](std::span<PackedAmplitude> walked, auto holds, auto vectors) VANTEL_INLINED {
        const Rephasing gate = given; // which no store to an entry can be thought to change
        const auto four = [=](PackedAmplitude* entry) VANTEL_INLINED {
            FourRecords records(entry);
            const FourWords selected = holds(records.first);
            if constexpr (!std::is_same_v<decltype(holds), EveryLabel>)
                if (highest_bits_wide(selected) == 0) return true;
            const FourWords even = __builtin_shufflevector(gate.factor(entry[0]), gate.factor(entry[2]), 0, 1, 6, 7);
            const FourWords uneven = __builtin_shufflevector(gate.factor(entry[1]), gate.factor(entry[3]), 0, 1, 6, 7);
            const auto f = reinterpret_cast<FourParts>(__builtin_shufflevector(even, uneven, 0, 4, 2, 6));
            const auto g = reinterpret_cast<FourParts>(__builtin_shufflevector(even, uneven, 1, 5, 3, 7));
            const FourParts real = records.real * f - records.imaginary * g;
            const FourParts imaginary = records.imaginary * f + records.real * g;
            // A product with NaN may have an infinity to recover.
            FourWords numbers;
            ordered_wide(real, imaginary, numbers);
            if (highest_bits_wide(equal(records.second & gate.field, gate.top) & numbers) != 15) [[unlikely]]
                return false;
            put_wide(selected, real, records.real);
            put_wide(selected, imaginary, records.imaginary);
            store_numbers(records.real, records.imaginary,
                          {&entry[0].amplitude, &entry[1].amplitude, &entry[2].amplitude, &entry[3].amplitude});
            return true;
        };
        for_each_by_four(walked, vectors, four, [=](PackedAmplitude& entry) VANTEL_INLINED {
            if (holds(entry.values) != 0) store(gate.any_factor(entry)(parts_of(entry.amplitude)), entry.amplitude);
        });
    });
}
} // namespace vantel::qudit

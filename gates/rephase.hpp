/// The walk that the gates that turn phases share.
#pragma once

#include "algorithms/complex_product.hpp"
#include "gates/frame.hpp"
#include <span>
#include <type_traits>

namespace vantel::qudit {
/// A number that stands twice, so that either half of a vector can be taken from where it is.
class Doubled {
public:
    Doubled() = default;
    explicit Doubled(const std::complex<double>& number) noexcept
        : words_(reinterpret_cast<FourWords>(joined(parts_of(number), parts_of(number)))) {}

    /// As words, since gcc joins halves of those in one cheap instruction and halves of doubles in a dear one.
    [[nodiscard]] const FourWords& words() const noexcept { return words_; }
    [[nodiscard]] Parts parts() const noexcept { return *reinterpret_cast<const StoredParts*>(&words_); }

private:
    FourWords words_;
};

/// Multiplies the amplitudes of all selected entries. A group of four of which none is selected is passed over.
/// @param gate  gate.factor(entry), Doubled, is the factor of an entry whose dimensions have gate.top in gate.field;
///              gate.any_factor(entry) is that of an entry of any kind
template <class Rephasing>
void rephase_selected(std::span<PackedAmplitude> entries, const ControlTest& controls_hold, Rephasing gate) {
    controls_hold.walk(entries, [gate](std::span<PackedAmplitude> walked, auto holds, auto vectors) VANTEL_INLINED {
        const auto rephase = [=](PackedAmplitude& entry) VANTEL_INLINED {
            if (holds(entry.values) != 0) store(gate.any_factor(entry)(parts_of(entry.amplitude)), entry.amplitude);
        };
        PackedAmplitude* entry = walked.data();
        PackedAmplitude* const end = entry + walked.size();
        if constexpr (std::is_same_v<decltype(vectors), WideVectors>)
            for (; end - entry >= 4; entry += 4) {
                FourRecords four(entry);
                const FourWords selected = holds(four.first);
                if (!any_wide(selected)) continue;
                const FourWords even =
                    __builtin_shufflevector(gate.factor(entry[0]).words(), gate.factor(entry[2]).words(), 0, 1, 6, 7);
                const FourWords uneven =
                    __builtin_shufflevector(gate.factor(entry[1]).words(), gate.factor(entry[3]).words(), 0, 1, 6, 7);
                const auto f = reinterpret_cast<FourParts>(__builtin_shufflevector(even, uneven, 0, 4, 2, 6));
                const auto g = reinterpret_cast<FourParts>(__builtin_shufflevector(even, uneven, 1, 5, 3, 7));
                const FourParts real = four.real * f - four.imaginary * g;
                const FourParts imaginary = four.imaginary * f + four.real * g;
                // A product with NaN may have an infinity to recover.
                const FourParts sum = real + imaginary;
                if (any_wide(~equal(four.second & gate.field, gate.top) | reinterpret_cast<FourWords>(sum != sum)))
                    [[unlikely]] {
                    for (PackedAmplitude& each : std::span(entry, 4)) rephase(each);
                    continue;
                }
                put_wide(selected, real, four.real);
                put_wide(selected, imaginary, four.imaginary);
                store_numbers(four.real, four.imaginary,
                              {&entry[0].amplitude, &entry[1].amplitude, &entry[2].amplitude, &entry[3].amplitude});
            }
        for (; entry != end; ++entry) rephase(*entry);
    });
}
} // namespace vantel::qudit

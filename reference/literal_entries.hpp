#pragma once

#include "state/dit_array.hpp"
#include "state/entries.hpp"
#include "state/istate.hpp"
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

// The plain meaning of the entry list: unpacked labels and linear searches, nothing shared with
// the library beyond its value types, so that it can be checked by reading.
namespace vantel::reference {
using qudit::DensityMatrixEntry;
using qudit::Dit;
using qudit::QuditsProbability;

using Entry = qudit::BasisAmplitudeData;
using Entries = std::vector<Entry>;
using Ints = std::vector<int>;
using Controls = std::vector<qudit::Predicate>;
using Complex = std::complex<double>;

// What ends the process with a diagnostic.
struct EndOfProcess {};

// An index that names no slot, as a handle that stands twice in a merged list can carry, reads level 0 of one
// level. Nothing that is written there stays.
template <class AnyEntry> auto& slot(AnyEntry& entry, int index) {
    static thread_local Dit nowhere;
    nowhere = {0, 1};
    using Slot = std::remove_reference_t<decltype(entry.dits[0])>;
    const bool is_slot = 0 <= index && index < static_cast<int>(entry.dits.size());
    return is_slot ? entry.dits[static_cast<std::size_t>(index)] : static_cast<Slot&>(nowhere);
}

inline Ints values_at(const Entry& entry, const Ints& indices) {
    Ints levels;
    for (int index : indices) levels.push_back(static_cast<int>(slot(entry, index).value));
    return levels;
}

inline bool same_label(const Entry& a, const Entry& b) {
    return std::equal(a.dits.begin(), a.dits.end(), b.dits.begin(), b.dits.end(),
                      [](const Dit& x, const Dit& y) { return x.value == y.value; });
}

inline bool label_before(const Entry& a, const Entry& b) {
    return std::lexicographical_compare(a.dits.rbegin(), a.dits.rend(), b.dits.rbegin(), b.dits.rend(),
                                        [](const Dit& x, const Dit& y) { return x.value < y.value; });
}

inline bool controls_hold(const Entry& entry, const Controls& controls) {
    for (const auto& control : controls) {
        const auto level = static_cast<std::int64_t>(slot(entry, control.qudit_index).value);
        if ((level == control.value) != control.is_equal) return false;
    }
    return true;
}

// The platform's std::norm gives NaN for an infinite part beside a NaN.
inline double squared_modulus(const Complex& amplitude) {
    if (std::isinf(amplitude.real()) || std::isinf(amplitude.imag())) return std::numeric_limits<double>::infinity();
    return amplitude.real() * amplitude.real() + amplitude.imag() * amplitude.imag();
}

// Each hole takes the kept entry nearest the tail: the order that this leaves decides the order of
// later sums and results.
template <class Keep> void erase_from_both_ends(Entries& entries, Keep keep) {
    auto front = entries.begin();
    auto back = entries.end();
    for (;;) {
        while (front != back && keep(*front)) ++front;
        if (front == back) break;
        --back;
        while (front != back && !keep(*back)) --back;
        if (front == back) break;
        std::swap(*front, *back);
        ++front;
    }
    entries.erase(back, entries.end());
}

inline void reduce(Entries& entries) {
    // Nothing else settles the order in which equal labels are added.
    std::stable_sort(entries.begin(), entries.end(), label_before);
    for (std::size_t i = 0; i + 1 < entries.size(); ++i) {
        if (same_label(entries[i], entries[i + 1])) {
            entries[i + 1].amplitude = entries[i].amplitude + entries[i + 1].amplitude;
            entries[i].amplitude = 0.0;
        }
    }
    erase_from_both_ends(entries, [](const Entry& entry) {
        return std::abs(entry.amplitude.real()) > 0x1p-23 || std::abs(entry.amplitude.imag()) > 0x1p-23;
    });
}

inline Entries hadamard_no_reduce(const Entries& entries, int target, const Controls& controls, double sign) {
    Entries output;
    if (entries.empty()) return output;
    const std::uint64_t d = slot(entries.front(), target).dimension;
    const double scale = 1.0 / std::sqrt(static_cast<double>(d));
    const double unit = (sign + sign) * 3.141592653589793;
    for (const Entry& entry : entries) {
        if (!controls_hold(entry, controls)) {
            output.push_back(entry);
            continue;
        }
        const auto v = static_cast<double>(slot(entry, target).value);
        for (std::uint64_t k = 0; k < d; ++k) {
            const double theta = ((unit * static_cast<double>(d - k)) * v) / static_cast<double>(d);
            Entry child = entry;
            slot(child, target).value = k;
            child.amplitude = entry.amplitude * Complex(scale * std::cos(theta), scale * std::sin(theta));
            output.push_back(child);
        }
    }
    return output;
}

// Written out, since the platform's distribution may take a running sum equal to u for greater.
inline std::size_t draw(const std::vector<float>& weights, std::uint32_t seed_word) {
    double total = 0.0;
    for (float weight : weights) total += static_cast<double>(weight);
    std::mt19937 generator(seed_word);
    const auto a = static_cast<double>(generator());
    const auto b = static_cast<double>(generator());
    const double u = (b * 0x1p32 + a) * 0x1p-64;
    double running = 0.0;
    for (std::size_t i = 0; i + 1 < weights.size(); ++i) {
        running += static_cast<double>(weights[i]) / total;
        if (running > u) return i;
    }
    return weights.size() - 1;
}
} // namespace vantel::reference

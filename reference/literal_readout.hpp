#pragma once

#include "reference/literal_entries.hpp"
#include "state/exceptions.hpp"
#include <stdexcept>
#include <string>

namespace vantel::reference {
inline constexpr std::size_t max_entries = 100000;

struct Config {
    std::uint64_t dim;
    std::uint64_t num_qudits;
};

// Outside the model: a level or dimension above the state's, and a label longer than the state.
class LiteralReadout {
public:
    LiteralReadout(Config config, const Entries& entries) : config_(config) {
        if (entries.size() > max_entries) throw qudit::StateSizeExceeded("State size exceeded maximum allowed size");
        if (config.dim < 2) throw qudit::BadDimension("dim must be >= 2");
        if (config.dim > 10) throw qudit::BadDimension("dim must be <= MAX_QUDIT_DIMENSION: 10");
        if (config.num_qudits == 0) throw std::invalid_argument("num_qudits must be >= 1");
        if (config.num_qudits > 10) throw qudit::BadQuditNumber("num_qudits must be <= MAX_QUDIT_NUM: 10");
        for (Entry entry : entries) {
            entry.dits.resize(config.num_qudits, Dit{0, 1});
            const auto is_same = [&](const Entry& kept) { return same_label(kept, entry); };
            if (std::none_of(entries_.begin(), entries_.end(), is_same)) entries_.push_back(entry);
        }
        // Not before the search: a zero that comes first takes its later duplicates with it.
        std::erase_if(entries_, [](const Entry& entry) { return entry.amplitude == 0.0; });
    }

    std::uint64_t dimension() const { return config_.dim; }
    std::uint64_t num_qudits() const { return config_.num_qudits; }
    const Entries& basis_amplitudes() const { return entries_; }
    // With every entry dropped, no label is left to tell.
    std::uint64_t qudit_dimension(int index) const {
        return entries_.empty() ? 0 : slot(entries_.front(), index).dimension;
    }

    std::vector<QuditsProbability> probabilities(const Ints& qudits) const {
        std::vector<QuditsProbability> table;
        for (const Entry& entry : entries_) {
            for (int index : qudits)
                if (index >= static_cast<int>(num_qudits())) throw std::out_of_range("qudit index out of range");
            const Ints outcome = values_at(entry, qudits);
            const auto found = std::find_if(table.begin(), table.end(),
                                            [&](const auto& seen) { return seen.qudit_values == outcome; });
            if (found != table.end())
                found->probability += squared_modulus(entry.amplitude);
            else
                table.push_back({outcome, squared_modulus(entry.amplitude)});
        }
        return table;
    }

    std::vector<DensityMatrixEntry> reduced_density_matrix(const Ints& qudits) const {
        Ints traced;
        for (int i = 0; i < static_cast<int>(num_qudits()); ++i)
            if (std::find(qudits.begin(), qudits.end(), i) == qudits.end()) traced.push_back(i);
        std::vector<DensityMatrixEntry> matrix;
        for (const Entry& a : entries_) {
            for (const Entry& b : entries_) {
                if (values_at(a, traced) != values_at(b, traced)) continue;
                const Ints row = values_at(a, qudits);
                const Ints column = values_at(b, qudits);
                const Complex product = a.amplitude * std::conj(b.amplitude);
                const auto found = std::find_if(matrix.begin(), matrix.end(), [&](const auto& m) {
                    return m.row_values == row && m.column_values == column;
                });
                if (found != matrix.end())
                    found->element = found->element + product;
                else
                    matrix.push_back({row, column, product});
            }
        }
        return matrix;
    }

    // The word stands for the one taken from the system's random source.
    Ints measure(const Ints& qudits, std::uint32_t seed_word) {
        const std::vector<QuditsProbability> table = probabilities(qudits);
        if (table.empty()) return Ints(qudits.size(), 0);
        std::vector<float> weights;
        for (const QuditsProbability& outcome : table) weights.push_back(static_cast<float>(outcome.probability));
        const Ints result = table[draw(weights, seed_word)].qudit_values;
        erase_from_both_ends(entries_, [&](const Entry& entry) { return values_at(entry, qudits) == result; });
        float sum = 0.0F;
        for (const Entry& entry : entries_)
            sum = static_cast<float>(static_cast<double>(sum) + squared_modulus(entry.amplitude));
        const auto root = static_cast<double>(std::sqrt(sum));
        for (Entry& entry : entries_) entry.amplitude = {entry.amplitude.real() / root, entry.amplitude.imag() / root};
        return result;
    }

protected:
    Config config_;
    Entries entries_;
};
} // namespace vantel::reference

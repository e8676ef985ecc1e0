/**
 * @file vantel_conditional_sampling.hpp
 * @brief Header-only, part of vantel_sampling.hpp: shots of more qudits than one table can have rows for.
 */
#ifndef VANTEL_CONDITIONAL_SAMPLING_HPP
#define VANTEL_CONDITIONAL_SAMPLING_HPP

#include "vantel_lists.hpp" // refuses what is older than C++20
#include "vantel_random.hpp"

#if __cplusplus >= 202002L || (defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <stdexcept>
#include <utility>
#include <vector>

/// @cond internal
namespace vantel::detail {
/// Draws shots part by part. The levels of a few qudits are drawn from their table, and those of the next few
/// from a table of what goes with these levels: a helper qubit is raised where they stand, the table lists it
/// as the last qudit, and it is lowered again. Shots that share all levels so far share a table. What the
/// helper does is whole cycles, so that the state is as it was to the bit.
class ConditionalSampler {
public:
    /// Takes the helper's place; std::length_error where there is none.
    explicit ConditionalSampler(const QuditList& qudits) : qudits_(qudits), helper_(2) {
        merge(qudits_);
        try {
            merge({qudits_[0], helper_});
        } catch (const Error& failure) {
            if (failure.status() != vantel_bad_qudit_number) throw;
            throw std::length_error("a table of too many outcomes, and no place among the ten for the helper "
                                    "qubit that is drawn with in its stead: ask for fewer qudits at a time");
        }
    }

    /// The levels of `shots` shots. Each part takes one uniform_number() of each shot.
    template <BitGenerator Generator> std::vector<std::vector<int>> draw(std::size_t shots, Generator&& generator) {
        std::vector<std::vector<int>> drawn(shots);
        std::vector<std::size_t> all(shots);
        for (std::size_t shot = 0; shot < shots; ++shot) all[shot] = shot;
        if (shots > 0) draw_part(drawn, all, {}, [&generator] { return uniform_number(generator); });
        return drawn;
    }

private:
    /// The most rows of a part's table, of which there is one for each group of shots.
    static constexpr std::size_t most_rows = 1000;

    // Draws the next levels of the shots in a group, which share those in `known`.
    void draw_part(std::vector<std::vector<int>>& drawn, const std::vector<std::size_t>& group,
                   const std::vector<Condition>& known, const std::function<double()>& uniform) {
        if (known.size() == qudits_.size()) return;
        std::vector<std::reference_wrapper<const Qudit>> part;
        std::size_t rows = 1;
        for (std::size_t i = known.size(); i < qudits_.size(); ++i) {
            rows *= static_cast<std::size_t>(qudits_[i].dimension());
            if (rows > most_rows && !part.empty()) break;
            part.emplace_back(qudits_[i]);
        }
        const Outcomes table = flagged(part, known);

        // The rows in which the helper is raised are the second half.
        std::vector<double> sums;
        for (std::size_t row = table.size() / 2; row < table.size(); ++row)
            sums.push_back((sums.empty() ? 0 : sums.back()) + table[row].probability);
        if (sums.empty() || !(sums.back() > 0))
            throw std::domain_error("no outcome to draw: the joint state of the qudits is empty");
        std::map<std::size_t, std::vector<std::size_t>> groups;
        for (const std::size_t shot : group) {
            const auto found = std::ranges::upper_bound(sums, uniform() * sums.back());
            // Rounding can reach the whole sum; it stands first where the last possible row does.
            const auto row = found == sums.end() ? std::ranges::lower_bound(sums, sums.back()) : found;
            groups[static_cast<std::size_t>(row - sums.begin())].push_back(shot);
        }
        for (const auto& [row, shots] : groups) {
            std::vector<Condition> levels = known;
            for (std::size_t i = 0; i < part.size(); ++i) {
                const int level = table[table.size() / 2 + row].qudit_values[i];
                levels.push_back(part[i].get() == level);
                for (const std::size_t shot : shots) drawn[shot].push_back(level);
            }
            draw_part(drawn, shots, levels, uniform);
        }
    }

    /// The table of a part and the helper, which is raised where the conditions hold.
    Outcomes flagged(std::vector<std::reference_wrapper<const Qudit>> part, const std::vector<Condition>& where) {
        part.emplace_back(helper_);
        cycle(helper_, where);
        Outcomes table(part);
        cycle(helper_, where);
        return table;
    }

    QuditList qudits_;
    Qudit helper_;
};
} // namespace vantel::detail
/// @endcond

#endif // C++20
#endif

#pragma once

#include "reference/literal_handles.hpp"
#include <initializer_list>
#include <typeinfo>

namespace vantel::reference {
inline constexpr HandleId no_handle = -1;
inline constexpr const char* version_text = "1.0.0";

// What a call shows beside its outputs. The status has no meaning where an exception passed out.
struct Outcome {
    int status = 0;
    std::string stderr_text{};
    bool passed_out = false;
    std::string exception_text{};
    std::string exception_type{}; // typeid name
};

// The exported functions. Outputs are written only where the caller's buffers are.
class Library : public HandleTable {
    using Plain = void (LiteralState::*)(const Ints&, const Controls&);
    using Power = void (LiteralState::*)(const Ints&, float, const Controls&);

public:
    Outcome make_quantum_property(int dimension, HandleId& made) {
        made = no_handle;
        return translate({6, 9},
                         [&] { made = make(static_cast<std::uint64_t>(static_cast<std::int64_t>(dimension))); });
    }

    Outcome free_quantum_property(HandleId property) {
        if (property == no_handle) return {1};
        release(property);
        return {};
    }

    Outcome hadamard(HandleId target, const HandleControls& controls) {
        return plain(target, controls, &LiteralState::hadamard);
    }
    Outcome inverse_hadamard(HandleId target, const HandleControls& controls) {
        return plain(target, controls, &LiteralState::inverse_hadamard);
    }
    Outcome cycle(HandleId target, float fraction, const HandleControls& controls) {
        return power(target, fraction, controls, &LiteralState::cycle, &LiteralState::cycle);
    }
    Outcome shift(HandleId target, float fraction, const HandleControls& controls) {
        return power(target, fraction, controls, &LiteralState::shift, &LiteralState::shift);
    }
    Outcome clock(HandleId target, float fraction, const HandleControls& controls) {
        return power(target, fraction, controls, &LiteralState::clock, &LiteralState::clock);
    }

    Outcome phase_rotate(const HandleControls& controls, float angle) {
        if (controls.empty()) return {};
        return on_joint_state({4, 9}, {}, controls,
                              [=](LiteralState& s, const Ints&, const Controls& c) { s.phase_rotate(c, angle); });
    }

    Outcome swap(HandleId first, HandleId second, const HandleControls& controls) {
        return on_joint_state({4, 5, 6, 7, 9}, {first, second}, controls,
                              [](LiteralState& s, const Ints& t, const Controls& c) { s.swap(t[0], t[1], c); });
    }

    Outcome i_swap(HandleId first, HandleId second, float fraction, const HandleControls& controls) {
        return on_joint_state(
            {4, 5, 7, 9}, {first, second}, controls,
            [=](LiteralState& s, const Ints& t, const Controls& c) { s.i_swap(t[0], t[1], fraction, c); });
    }

    Outcome measure(const HandleList& list, std::uint32_t seed_word, Ints& results) {
        return on_joint_state({6, 7}, list, {}, [&](LiteralState& s, const Ints& qudits, const Controls&) {
            results = s.measure(qudits, seed_word);
        });
    }

    Outcome stochastic_projection(const HandleControls& controls, std::uint32_t seed_word, int& result) {
        const HandleId ancilla = make(2);
        const Outcome outcome =
            on_joint_state({6, 7}, {ancilla}, controls, [&](LiteralState& s, const Ints& t, const Controls& c) {
                s.cycle(t, c);
                result = s.measure(t, seed_word)[0];
            });
        release(ancilla);
        return outcome;
    }

    // A record's levels and its narrowed probability, in the fixed order of the permutations.
    using Records = std::vector<std::pair<Ints, float>>;

    Outcome probabilities(const HandleList& list, Records& records) {
        std::vector<QuditsProbability> table;
        const Outcome merged =
            on_joint_state({6, 7}, list, {}, [&](LiteralState& s, const Ints& qudits, const Controls&) {
                table = s.probabilities(qudits);
            });
        if (merged.status != 0 || merged.passed_out) return merged;
        const std::vector<Ints> permutations = value_permutations(list);
        std::uint32_t product = 1;
        for (HandleId handle : list) product *= static_cast<std::uint32_t>(dimension(handle));
        const auto output_size = static_cast<std::int32_t>(product);
        if (permutations.size() != static_cast<std::size_t>(output_size)) {
            const std::string text = "permutations.size(): " + std::to_string(permutations.size()) +
                                     " != output_size: " + std::to_string(output_size);
            return {0, text + "\n", true, text, typeid(std::runtime_error).name()};
        }
        records.clear();
        for (const Ints& values : permutations) {
            records.emplace_back(values, 0.0F);
            for (const QuditsProbability& outcome : table)
                if (outcome.qudit_values == values) records.back().second = static_cast<float>(outcome.probability);
        }
        return merged;
    }

    Outcome reduced_density_matrix(const HandleList& list, std::size_t output_size, std::vector<float>& real_parts,
                                   std::vector<float>& imaginary_parts) {
        const std::vector<Ints> permutations = value_permutations(list);
        const std::size_t side = permutations.size();
        const auto narrow = static_cast<std::uint32_t>(side);
        const auto required = static_cast<std::size_t>(static_cast<std::int32_t>(narrow * narrow));
        if (required != output_size)
            return {required > output_size ? 3 : 8,
                    "permutations.size(): " + std::to_string(side) +
                        (required > output_size ? " < output_size: " : " != output_size: ") +
                        std::to_string(output_size) + "\n"};
        std::vector<float> real(output_size);
        std::vector<float> imaginary(output_size);
        const auto position_of = [&](const Ints& values) {
            return static_cast<std::size_t>(std::find(permutations.begin(), permutations.end(), values) -
                                            permutations.begin());
        };
        return on_joint_state({}, list, {}, [&](LiteralState& s, const Ints& qudits, const Controls&) {
            for (const DensityMatrixEntry& entry : s.reduced_density_matrix(qudits)) {
                const std::size_t row = position_of(entry.row_values);
                const std::size_t column = position_of(entry.column_values);
                if (row == side || column == side) continue; // a level beyond its qudit's own dimension has no place
                const std::size_t place = row * side + column;
                real.at(place) = static_cast<float>(entry.element.real());
                imaginary.at(place) = static_cast<float>(entry.element.imag());
            }
            real_parts = real;
            imaginary_parts = imaginary;
        });
    }

private:
    // Each function names the codes it has handlers for; the rows differ on purpose.
    template <class Body> static Outcome translate(std::initializer_list<int> handled, Body body) {
        const auto failed = [&](int code, const std::exception& failure) -> Outcome {
            if (std::find(handled.begin(), handled.end(), code) != handled.end())
                return {code, failure.what() + std::string("\n")};
            return {0, "", true, failure.what(), typeid(failure).name()};
        };
        try {
            body();
            return {};
        } catch (const qudit::TargetControlOverlap& failure) {
            return failed(4, failure);
        } catch (const qudit::DifferentDimensions& failure) {
            return failed(5, failure);
        } catch (const qudit::BadDimension& failure) {
            return failed(6, failure);
        } catch (const qudit::BadQuditNumber& failure) {
            return failed(7, failure);
        } catch (const qudit::StateSizeExceeded& failure) {
            return failed(9, failure);
        } catch (const std::exception& failure) {
            return failed(0, failure);
        }
    }

    // Merges first: that renumbers the handles, so indices are read after it.
    template <class Act> Outcome on_joint_state(std::initializer_list<int> handled, const HandleList& targets,
                                                const HandleControls& controls, Act act) {
        return translate(handled, [&] {
            HandleList list = targets;
            for (const HandleControl& control : controls) list.push_back(control.property);
            LiteralState& joint = merge(list);
            Ints indices;
            for (HandleId target : targets) indices.push_back(index(target));
            Controls indexed;
            for (const HandleControl& control : controls)
                indexed.push_back({index(control.property), control.value, control.is_equal});
            act(joint, indices, indexed);
        });
    }

    Outcome plain(HandleId target, const HandleControls& controls, Plain act) {
        return on_joint_state({4, 9}, {target}, controls,
                              [=](LiteralState& s, const Ints& t, const Controls& c) { (s.*act)(t, c); });
    }

    Outcome power(HandleId target, float fraction, const HandleControls& controls, Plain whole, Power part) {
        if (fraction == 1.0F) return plain(target, controls, whole);
        return on_joint_state({4, 9}, {target}, controls,
                              [=](LiteralState& s, const Ints& t, const Controls& c) { (s.*part)(t, fraction, c); });
    }

    // The first property varies fastest. A property in a state without entries has no levels.
    std::vector<Ints> value_permutations(const HandleList& list) const {
        std::vector<Ints> permutations{{}};
        for (HandleId handle : list) {
            std::vector<Ints> longer;
            for (int level = 0; level < static_cast<int>(dimension(handle)); ++level) {
                for (Ints values : permutations) {
                    values.push_back(level);
                    longer.push_back(values);
                }
            }
            permutations = longer;
        }
        return permutations;
    }
};
} // namespace vantel::reference

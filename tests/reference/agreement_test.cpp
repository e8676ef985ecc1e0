#include <limits>
#include <random>

#include "tests/reference/literal_state.hpp"
#include "tests/support/random_source.hpp"
#include "tests/support/states.hpp"

// The library against the literal model: every bit, every order and every text, on random states under
// random operations. Whatever the library finds sooner must be the same thing found.
namespace vantel::testing {
namespace {

using reference::Controls;
using reference::Ints;
using reference::LiteralState;

constexpr double infinity = std::numeric_limits<double>::infinity();

/// Both worlds of one state, and the dice.
class Agreement {
public:
    explicit Agreement(unsigned seed) : dice_(seed) {}

    int roll(int sides) { return static_cast<int>(dice_() % static_cast<unsigned>(sides)); }

    struct Kind {
        int rounds;
        int fewest_qudits, most_qudits;
        int fewest_entries, most_entries;
    };

    void start(std::uint64_t build, const Kind& kind) {
        dimensions_.clear();
        const int qudits = kind.fewest_qudits + roll(kind.most_qudits - kind.fewest_qudits + 1);
        for (int i = 0; i < qudits; ++i)
            dimensions_.push_back(2 + static_cast<std::uint64_t>(roll(static_cast<int>(build) - 1)));
        const bool beyond_own_dimension = roll(4) == 0;
        const int special = roll(2) == 0 ? 0 : 8;
        Entries entries;
        for (int k = kind.fewest_entries + roll(kind.most_entries - kind.fewest_entries + 1); k > 0; --k) {
            Entry& entry = entries.emplace_back();
            for (const std::uint64_t d : dimensions_)
                entry.dits.push_back(
                    {static_cast<std::uint64_t>(roll(static_cast<int>(beyond_own_dimension ? build : d))),
                     d});
            entry.amplitude = {part(special), part(special)};
        }
        state_ = Factory::make_unique_state({build, dimensions_.size()}, entries);
        model_.emplace(reference::Config{build, dimensions_.size()}, entries);
        compare("construction");
    }

    std::size_t size() const { return model_->basis_amplitudes().size(); }

    void gate() {
        const int qudits = static_cast<int>(dimensions_.size());
        Ints targets;
        std::size_t children = size();
        for (int i = roll(4) == 0 ? roll(4) : 1; i > 0; --i) {
            targets.push_back(roll(qudits));
            const std::uint64_t d = dimensions_[static_cast<std::size_t>(targets.back())];
            children *= d * d; // a fractional power transforms twice
        }
        if (children > 40000)
            targets.resize(1);
        Controls controls;
        constexpr int wild[] = {std::numeric_limits<int>::min(), -1, 15, 16, 1 << 20,
                                std::numeric_limits<int>::max()};
        for (int i = roll(3); i > 0; --i)
            controls.push_back({roll(qudits), roll(8) == 0 ? wild[roll(6)] : roll(4), roll(2) == 0});
        constexpr float fractions[] = {1.0F,
                                       0.5F,
                                       0.0F,
                                       -0.0F,
                                       -1.0F,
                                       0.25F,
                                       2.0F,
                                       0.1F,
                                       3.3F,
                                       1.0000001F,
                                       1e10F,
                                       std::numeric_limits<float>::infinity(),
                                       std::numeric_limits<float>::quiet_NaN()};
        const float fraction = fractions[roll(roll(20) == 0 ? 13 : 11)];
        const int first = roll(qudits);
        const int second = roll(qudits);
        const int operation = roll(11);
        const auto act = [&](auto& s) {
            switch (operation) {
            case 0:
                return s.phase_rotate(controls, fraction);
            case 1:
                return s.shift(targets, controls);
            case 2:
                return s.shift(targets, fraction, controls);
            case 3:
                return s.cycle(targets, fraction, controls);
            case 4:
                return s.cycle(targets, controls);
            case 5:
                return s.clock(targets, controls);
            case 6:
                return s.clock(targets, fraction, controls);
            case 7:
                return s.hadamard(targets, controls);
            case 8:
                return s.inverse_hadamard(targets, controls);
            case 9:
                return s.swap(first, second, controls);
            default:
                return s.i_swap(first, second, fraction, controls);
            }
        };
        EXPECT_EQ(thrown_by([&] { act(*state_); }), thrown_by([&] { act(*model_); }));
        compare("gate " + std::to_string(operation));
    }

    void tables() {
        const Ints listed = some_qudits();
        std::vector<qudit::QuditsProbability> actual, expected;
        EXPECT_EQ(thrown_by([&] { actual = state_->probabilities(listed); }),
                  thrown_by([&] { expected = model_->probabilities(listed); }));
        ASSERT_EQ(actual.size(), expected.size());
        for (std::size_t i = 0; i < actual.size(); ++i) {
            ASSERT_EQ(actual[i].qudit_values, expected[i].qudit_values);
            ASSERT_TRUE(same_bits(actual[i].probability, expected[i].probability));
        }
        if (size() > 70 ||
            std::count(listed.begin(), listed.end(), static_cast<int>(dimensions_.size())) != 0)
            return;
        const auto matrix = state_->reduced_density_matrix(listed);
        const auto literal = model_->reduced_density_matrix(listed);
        ASSERT_EQ(matrix.size(), literal.size());
        for (std::size_t i = 0; i < matrix.size(); ++i) {
            ASSERT_EQ(matrix[i].row_values, literal[i].row_values);
            ASSERT_EQ(matrix[i].column_values, literal[i].column_values);
            ASSERT_TRUE(same_bits(matrix[i].element, literal[i].element)) << i;
        }
    }

    void measure() {
        const Ints listed = some_qudits();
        const auto word = static_cast<std::uint32_t>(dice_());
        const RandomSource source(word);
        Ints actual, expected;
        EXPECT_EQ(thrown_by([&] { actual = state_->measure(listed); }),
                  thrown_by([&] { expected = model_->measure(listed, word); }));
        EXPECT_EQ(actual, expected);
        compare("measure");
    }

    void release() {
        if (dimensions_.size() < 2)
            return;
        const int index = roll(static_cast<int>(dimensions_.size()));
        EXPECT_EQ(Factory::free_qudit(state_, index), model_->free_qudit(index));
        dimensions_[static_cast<std::size_t>(index)] = dimensions_.back();
        dimensions_.pop_back();
        compare("release");
    }

    void merge_with(Agreement& other) {
        if (dimensions_.size() + other.dimensions_.size() > 10 || size() * other.size() > 3000)
            return;
        state_ = qudit::tensor_product<10, 10>(*state_, *other.state_);
        model_ = reference::tensor_product(*model_, *other.model_);
        dimensions_.insert(dimensions_.end(), other.dimensions_.begin(), other.dimensions_.end());
        compare("merge");
    }

private:
    double part(int special) {
        constexpr double t = 0x1p-23;
        constexpr double values[] = {0.0,
                                     -0.0,
                                     infinity,
                                     -infinity,
                                     std::numeric_limits<double>::quiet_NaN(),
                                     t,
                                     -t,
                                     0x1.0000000000001p-23,
                                     -0x1.0000000000001p-23,
                                     1e-8,
                                     1e300,
                                     5e-324};
        if (special != 0 && roll(special) == 0)
            return values[roll(12)];
        return std::uniform_real_distribution<double>(-1.0, 1.0)(dice_);
    }

    /// With repetitions, in any order, and at times with one that is out of range.
    Ints some_qudits() {
        const int qudits = static_cast<int>(dimensions_.size());
        Ints listed;
        for (int i = roll(qudits + 2); i > 0; --i)
            listed.push_back(roll(30) == 0 ? qudits : roll(qudits));
        return listed;
    }

    void compare(const std::string& after) {
        EXPECT_TRUE(same_entries(state_->basis_amplitudes(), model_->basis_amplitudes())) << after;
        EXPECT_EQ(state_->dimension(), model_->dimension());
        EXPECT_EQ(state_->num_qudits(), model_->num_qudits());
        for (int i = 0; i < static_cast<int>(dimensions_.size()); ++i)
            EXPECT_EQ(state_->qudit_dimension(i), model_->qudit_dimension(i)) << after;
    }

    std::mt19937 dice_;
    Levels dimensions_;
    std::unique_ptr<qudit::IState> state_;
    std::optional<LiteralState> model_;
};

class LibraryAndModel : public ::testing::TestWithParam<std::tuple<std::uint64_t, Agreement::Kind>> {};

TEST_P(LibraryAndModel, AgreeInEveryBitUnderRandomOperations) {
    const auto& [build, kind] = GetParam();
    for (int round = 0; round < kind.rounds && !HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Agreement both(static_cast<unsigned>(round));
        Agreement other(static_cast<unsigned>(round) + 1000);
        both.start(build, kind);
        for (int step = 0; step < 14 && !HasFailure() && both.size() < 3000; ++step) {
            both.gate();
            const int next = both.size() > 3000 ? 7 : both.roll(16);
            if (next < 4)
                both.tables();
            else if (next < 6)
                both.measure();
            else if (next == 6)
                both.release();
            else if (next == 7) {
                other.start(2 + static_cast<std::uint64_t>(both.roll(9)), {1, 1, 3, 1, 5});
                both.merge_with(other);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(FieldsOfOneToFourBits, LibraryAndModel,
                         ::testing::Combine(::testing::Values(2, 3, 4, 5, 8, 9, 10),
                                            ::testing::Values(Agreement::Kind{150, 1, 4, 0, 12},
                                                              Agreement::Kind{25, 1, 10, 1, 300},
                                                              Agreement::Kind{2, 8, 10, 1500, 2500})));

} // namespace
} // namespace vantel::testing

// A code of three qutrits: level k becomes the sum over j of |j, j + k, j + 2k>. It sees every error of one
// qutrit, so what passes its test is wrong far more seldom than a qutrit without it, and it survives the loss
// of any one qutrit.
#include "check.hpp"
#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <random>
#include <vantel_noise.hpp>

namespace {
constexpr int levels = 3;
using Code = std::array<vantel::Qudit, 3>; // the last one holds the message while it is not encoded

void encode(Code& code) {
    vantel::hadamard(code[0]);
    vantel::sum(code[0], code[1]); // |j, j, k>
    vantel::sum(code[2], code[1]); // |j, j + k, k>
    vantel::sum(code[1], code[2]); // |j, j + k, j + 2k>
}

/// Takes the message out of the last two qutrits alone.
void recover(Code& code) {
    vantel::inverse_sum(code[1], code[2]);
    vantel::inverse_sum(code[2], code[1]);
}

using Errors = std::array<vantel::Weyl, 3>; // all but {0, 0} are errors, eight for each qutrit

struct Result {
    bool passed; ///< the test saw no error
    bool right;  ///< the message is as it was
};

/// Sends half of a Bell pair, which shows every error that the message can have.
Result send(const Errors& errors) {
    Code code{vantel::Qudit(levels), vantel::Qudit(levels), vantel::Qudit(levels)};
    vantel::Qudit kept(levels);
    vantel::prepare_bell(kept, code[2]);
    encode(code);
    for (std::size_t i = 0; i < code.size(); ++i) errors[i].apply(code[i]);
    recover(code);
    vantel::inverse_sum(code[0], code[1]);
    vantel::inverse_hadamard(code[0]);
    vantel::inverse_sum(kept, code[2]);
    vantel::inverse_hadamard(kept);
    const auto [clocks, shifts] = vantel::measure(code[0], code[1]);
    const auto [phase, offset] = vantel::measure(kept, code[2]);
    return {clocks == 0 && shifts == 0, phase == 0 && offset == 0};
}

bool arrives_unprotected(const vantel::Weyl& error) {
    vantel::Qudit kept(levels), sent(levels);
    vantel::prepare_bell(kept, sent);
    error.apply(sent);
    vantel::inverse_sum(kept, sent);
    vantel::inverse_hadamard(kept);
    const auto [phase, offset] = vantel::measure(kept, sent);
    return phase == 0 && offset == 0;
}
} // namespace

int main(int argc, char** argv) {
    no_options(argc, argv);
    for (std::size_t place = 0; place < 3; ++place)
        for (int error = 1; error < levels * levels; ++error) {
            Errors errors;
            errors[place] = {error % levels, error / levels};
            check(!send(errors).passed, "every error of one qutrit is seen");
        }

    // One qutrit is lost, whichever it is: the code is alike from each of them round to the last.
    for (std::ptrdiff_t lost = 0; lost < 3; ++lost) {
        Code code{vantel::Qudit(levels), vantel::Qudit(levels), vantel::Qudit(levels)};
        vantel::cycle(code[2], 0.4);
        vantel::clock(code[2], 0.3);
        const auto before = vantel::reduced_density_matrix(code[2]);
        encode(code);
        std::rotate(code.begin(), code.begin() + lost, code.end());
        vantel::reset(code[0]);
        recover(code);
        const auto after = vantel::reduced_density_matrix(code[2]);
        for (std::size_t row = 0; row < levels; ++row)
            for (std::size_t column = 0; column < levels; ++column)
                check(std::abs(after(row, column) - before(row, column)) < 1e-5, "two qutrits have the message");
    }
    std::cout << "24 errors of one qutrit seen, any lost qutrit done without\n";

    // Depolarising noise: with probability p a qutrit has one of the eight errors. The seed is fixed, so
    // every run prints the same table.
    constexpr int trials = 4000;
    std::mt19937_64 random(1);
    std::cout << "p      wrong without    passed   wrong of them   exactly\n" << std::fixed;
    for (const double p : {0.02, 0.05, 0.1}) {
        const auto noise = [&, channel = vantel::depolarising(levels, p)] { return channel.draw(random); };
        int wrong_without = 0, passed = 0, wrong = 0;
        for (int trial = 0; trial < trials; ++trial) {
            wrong_without += !arrives_unprotected(noise());
            const Errors errors{noise(), noise(), noise()};
            const auto [a, b, c] = errors;
            const Result result = send(errors);
            // The test sees the sums of the shifts and of the clocks; errors alike on all three do no harm.
            check(result.passed == ((a.shifts + b.shifts + c.shifts) % levels == 0 &&
                                    (a.clocks + b.clocks + c.clocks) % levels == 0),
                  "the test passes what it cannot see");
            check(!result.passed || result.right == (a == b && b == c), "the message has the error that is left");
            passed += result.passed;
            wrong += result.passed && !result.right;
        }
        const double pass = (1 + 8 * std::pow(1 - 9 * p / 8, 3)) / 9;
        const double pass_right = std::pow(1 - p, 3) + 8 * std::pow(p / 8, 3);
        std::cout << std::setprecision(2) << p << std::setprecision(5) << std::setw(15)
                  << static_cast<double>(wrong_without) / trials << std::setw(10)
                  << static_cast<double>(passed) / trials << std::setw(14) << static_cast<double>(wrong) / passed
                  << std::setw(12) << 1 - pass_right / pass << '\n';
        check(is_expected(wrong_without, trials, p), "without the code every error does harm");
        check(is_expected(passed, trials, pass), "the share that passes is known");
        check(is_expected(wrong, trials, pass - pass_right), "errors that pass are as seldom as told");
    }
}

// Addition in the Fourier basis: a number of three base-3 digits is added to another by phases alone, without
// a carry from digit to digit.
#include "check.hpp"
#include <cmath>
#include <functional>
#include <iomanip>

namespace {
constexpr int base = 3;
constexpr std::size_t digits = 3;
constexpr std::size_t numbers = 27;
using Number = std::vector<vantel::Qudit>; // lowest digit first

Number make_number(std::size_t value) {
    Number number = vantel::make_register(digits, base);
    for (auto& digit : number) {
        vantel::add(digit, static_cast<int>(value % base));
        value /= base;
    }
    return number;
}

std::size_t read(const Number& number) { return vantel::Shape(number).row(vantel::measure(number)); }

/// Takes |a, b> to |a, b + sign a mod 27>.
void add_number(const Number& a, Number& b, int sign = 1) {
    // The transform of b + a has the phases exp(2 pi i (b + a) y / 27). Digit m of a and digit j of y turn by
    // a_m y_j 3^(m + j) / 27 of a circle, which is a whole number of circles for m + j > 2.
    vantel::fourier_transform(b);
    for (std::size_t m = 0; m < digits; ++m)
        for (std::size_t j = 0; m + j < digits; ++j)
            for (int level = 1; level < base; ++level)
                vantel::clock(b[j], sign * level * std::pow(base, static_cast<double>(m + j) - 2), a[m] == level);
    vantel::inverse_fourier_transform(b);
}

float at(const vantel::Outcomes& table, std::size_t a, std::size_t b) { return table[a + numbers * b].probability; }
} // namespace

int main(int argc, char** argv) {
    no_options(argc, argv);
    int sums = 0;
    for (std::size_t left = 0; left < numbers; ++left)
        for (std::size_t right = 0; right < numbers; ++right) {
            const Number a = make_number(left);
            Number b = make_number(right);
            add_number(a, b);
            check(read(b) == (left + right) % numbers, "the sum is read");
            check(read(a) == left, "what was added is kept");
            ++sums;
        }
    std::cout << sums << " sums modulo 27, each as it should be\n";

    // Every number at once, added to 14.
    constexpr std::size_t right = 14;
    Number a = make_number(0), b = make_number(right);
    for (auto& digit : a) vantel::hadamard(digit);
    add_number(a, b);
    std::vector<std::reference_wrapper<vantel::Qudit>> both(a.begin(), a.end());
    both.insert(both.end(), b.begin(), b.end());
    const auto table = vantel::probabilities(both);
    std::cout << " a   a + " << right << "   probability\n";
    for (std::size_t left = 0; left < numbers; ++left)
        for (std::size_t sum = 0; sum < numbers; ++sum) {
            const bool right_sum = sum == (left + right) % numbers;
            const float seen = at(table, left, sum);
            check(std::abs(seen - (right_sum ? 1.0 / numbers : 0.0)) < 1e-5, "each number has its own sum");
            if (right_sum && left % 5 == 0)
                std::cout << std::setw(2) << left << std::setw(7) << sum << std::setw(15) << seen << '\n';
        }

    // Had the sums been a mixture, the numbers would not find back to level 0 after the subtraction.
    add_number(a, b, -1);
    for (auto& digit : a) vantel::inverse_hadamard(digit);
    const float undone = at(vantel::probabilities(both), 0, right);
    check(std::abs(undone - 1) < 1e-5, "the subtraction undoes the sum");
    std::cout << "subtracted again: 0 and " << right << " with probability " << undone << '\n';
}

// Deutsch-Jozsa on qutrits: one question tells a constant function of three trits from a balanced one, which
// takes each of its three values equally often.
#include "check.hpp"
#include <algorithm>
#include <functional>

namespace {
using Register = std::vector<vantel::Qudit>;
/// Adds the value of a function of the register to the answer, modulo 3.
using Oracle = std::function<void(const Register&, vantel::Qudit& answer)>;

bool is_constant(const Oracle& oracle) {
    Register question = vantel::make_register(3, 3);
    for (auto& trit : question) vantel::hadamard(trit);
    // An answer in the Fourier basis takes no note of what is added to it; the phase goes to the question.
    vantel::Qudit answer(3);
    vantel::cycle(answer);
    vantel::hadamard(answer);

    oracle(question, answer);

    for (auto& trit : question) vantel::inverse_hadamard(trit);
    const auto levels = vantel::measure(question);
    return std::ranges::all_of(levels, [](int level) { return level == 0; });
}
} // namespace

int main(int argc, char** argv) {
    no_options(argc, argv);
    for (int value = 0; value < 3; ++value)
        check(is_constant([=](const Register&, vantel::Qudit& answer) { vantel::add(answer, value); }),
              "a constant function is seen as one");
    check(!is_constant([](const Register& x, vantel::Qudit& answer) {
        vantel::sum(x[0], answer);
        vantel::inverse_sum(x[2], answer);
    }),
          "x0 - x2 is seen as balanced");
    check(!is_constant([](const Register& x, vantel::Qudit& answer) {
        vantel::sum(x[0], answer);
        vantel::toffoli(x[1], x[2], answer);
    }),
          "x0 + x1 x2 is seen as balanced");
    std::cout << "three constant and two balanced functions of three trits, told apart by one question each\n";
}

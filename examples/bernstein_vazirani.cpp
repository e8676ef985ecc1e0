// Bernstein-Vazirani on seven levels: a function s.x modulo 7 of three digits hides its factors s. One
// question about all x at once finds the three; questions about one x each would have to be three as well.
#include "check.hpp"
#include <array>

namespace {
constexpr int levels = 7;
using Digits = std::array<int, 3>;

/// Adds s.x modulo 7 to the answer, and counts how often it was asked to.
class Oracle {
public:
    explicit Oracle(const Digits& hidden) : hidden_(hidden) {}

    void ask(const std::vector<vantel::Qudit>& x, vantel::Qudit& answer) {
        ++questions_;
        for (std::size_t digit = 0; digit < hidden_.size(); ++digit)
            for (int level = 1; level < levels; ++level) vantel::add(answer, hidden_[digit] * level, x[digit] == level);
    }

    [[nodiscard]] int questions() const { return questions_; }

private:
    Digits hidden_;
    int questions_ = 0;
};

Digits find(Oracle& oracle) {
    auto question = vantel::make_register(3, levels);
    for (auto& digit : question) vantel::inverse_hadamard(digit);
    // The answer is the sum over k of exp(-2 pi i k / 7) |k>. To add v to it is to multiply it by
    // exp(2 pi i v / 7).
    vantel::Qudit answer(levels);
    vantel::cycle(answer);
    vantel::hadamard(answer);

    oracle.ask(question, answer);

    // Level x of a digit now has the phase exp(2 pi i s x / 7): inverse_hadamard of level s.
    for (auto& digit : question) vantel::hadamard(digit);
    const auto read = vantel::measure(question);
    return {read[0], read[1], read[2]};
}
} // namespace

int main(int argc, char** argv) {
    no_options(argc, argv);
    std::cout << "hidden   found    questions\n";
    for (int number = 0; number < levels * levels * levels; ++number) {
        const Digits hidden{number / (levels * levels), number / levels % levels, number % levels};
        Oracle oracle(hidden);
        const Digits found = find(oracle);
        check(found == hidden && oracle.questions() == 1, "one question finds the hidden digits");
        if (number % 60 == 0)
            std::cout << hidden[0] << ' ' << hidden[1] << ' ' << hidden[2] << "    " << found[0] << ' ' << found[1]
                      << ' ' << found[2] << "    " << oracle.questions() << '\n';
    }
}

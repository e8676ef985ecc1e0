// A key is agreed on by qutrits that are prepared and measured in one of two bases, the levels and their
// Fourier transform. Whoever listens on the way guesses the basis and leaves errors behind.
#include "check.hpp"
#include <random>

namespace {
constexpr int levels = 3;

struct Sifted {
    int kept = 0;   ///< both sides chose the same basis
    int errors = 0; ///< and yet read different levels
};

int measure_in(vantel::Qudit& qutrit, bool fourier) {
    if (fourier) vantel::inverse_hadamard(qutrit);
    const int level = vantel::measure(qutrit);
    if (fourier) vantel::hadamard(qutrit);
    return level;
}

Sifted exchange(int qutrits, bool overheard, std::mt19937& random) {
    const auto any_basis = [&] { return std::bernoulli_distribution(0.5)(random); };
    Sifted key;
    for (int i = 0; i < qutrits; ++i) {
        const int sent = std::uniform_int_distribution(0, levels - 1)(random);
        const bool prepared = any_basis(), measured = any_basis();
        vantel::Qudit qutrit(levels);
        vantel::add(qutrit, sent);
        if (prepared) vantel::hadamard(qutrit);
        if (overheard) measure_in(qutrit, any_basis());
        const int received = measure_in(qutrit, measured);
        key.kept += prepared == measured;
        key.errors += prepared == measured && sent != received;
    }
    return key;
}
} // namespace

int main(int argc, char** argv) {
    no_options(argc, argv);
    constexpr int qutrits = 3000;
    std::mt19937 random(std::random_device{}());
    for (const bool overheard : {false, true}) {
        const auto [kept, errors] = exchange(qutrits, overheard, random);
        std::cout << (overheard ? "overheard: " : "undisturbed: ") << kept << " trits kept of " << qutrits << ", "
                  << errors << " wrong\n";
        check(is_expected(kept, qutrits, 0.5), "half of the bases agree");
        // The listener's basis is wrong half the time, and then two of three levels are.
        check(is_expected(errors, kept, overheard ? 1.0 / 3 : 0.0), "only a listener leaves errors");
    }
}

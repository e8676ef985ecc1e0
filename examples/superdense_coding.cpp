// Superdense coding with ten levels: one qudit of a shared Bell pair carries two decimal digits.
#include "check.hpp"

int main(int argc, char** argv) {
    no_options(argc, argv);
    constexpr int levels = 10;
    int received = 0;
    for (int message = 0; message < levels * levels; ++message) {
        vantel::Qudit sent(levels), kept(levels);
        vantel::prepare_bell(sent, kept);

        // The sender touches one qudit only.
        const int first_digit = message / levels;
        vantel::clock(sent, first_digit);
        vantel::add(sent, message % levels);

        // The receiver has both: |k + units, k> with a phase for each k becomes |units> and |tens>.
        vantel::inverse_sum(kept, sent);
        vantel::hadamard(kept);
        const auto [units, tens] = vantel::measure(sent, kept);
        check(10 * tens + units == message, "the two digits arrive");
        ++received;
    }
    std::cout << received << " messages of two digits, each received from one qudit of ten levels\n";
}

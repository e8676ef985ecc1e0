// Two qutrits that always agree, and a failure that arrives as an exception across the library's border.
#include <vantel.hpp>

int main() {
    vantel::Qudit first(3), second(3);
    vantel::prepare_bell(first, second);
    const auto [a, b] = vantel::measure(first, second);

    auto qudits = vantel::make_register(11, 2);
    try {
        for (vantel::Qudit& qudit : qudits) vantel::hadamard(qudit, first == 0);
    } catch (const vantel::Error& failure) {
        return a != b || failure.status() != vantel_bad_qudit_number;
    }
    return 1;
}

#include "contender.hpp"
#include <random>

namespace peers {
void pair_by_hand() {
    std::vector<double> amplitudes(4);
    amplitudes[0] = amplitudes[1] = std::sqrt(0.5); // a Fourier gate on the first qubit of level 0
    std::swap(amplitudes[1], amplitudes[3]);        // the second follows
    std::random_device device("/dev/urandom");
    std::mt19937 generator(device());
    double left = std::uniform_real_distribution<double>()(generator);
    std::size_t drawn = 0;
    while (drawn < 3 && (left -= amplitudes[drawn] * amplitudes[drawn]) >= 0) ++drawn;
    if (drawn != 0 && drawn != 3) throw std::runtime_error("an entangled pair that differs");
}
} // namespace peers

/// One pass for each gate over entries of 32 bytes, in which every word is read, changed and written.
#include "contender.hpp"
#include <cstdint>

namespace peers {
namespace {
struct Entry {
    std::uint64_t values, dimensions;
    double re, im;
};

class BarePass final : public Contender {
public:
    explicit BarePass(const Register& of) : list_(of.size()) {}

    void load(const std::vector<Amplitude>& amplitudes) override {
        for (std::size_t i = 0; i < amplitudes.size(); ++i)
            list_[i] = {i, 0, amplitudes[i].real(), amplitudes[i].imag()};
    }

    void apply(const Step&) override {
        for (Entry& entry : list_) {
            entry.values ^= 1;
            entry.dimensions ^= 1;
            entry.re = -entry.re;
            entry.im = -entry.im;
        }
    }

    [[nodiscard]] std::vector<Amplitude> amplitudes() const override { throw std::logic_error("a pass has no result"); }

private:
    std::vector<Entry> list_;
};
} // namespace

std::unique_ptr<Contender> bare_pass(const Register& of) { return std::make_unique<BarePass>(of); }
} // namespace peers

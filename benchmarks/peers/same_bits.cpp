/// Loops by hand under the rules of the library: every sum in the order of the levels, no fused operations, each sum
/// held against the threshold, a sum that is not a number noticed. Once on two lists of numbers, and once on entries of
/// 32 bytes with their labels. What they take is what a complete list allows.
#include "contender.hpp"
#include <algorithm>
#include <cstdint>

namespace peers {
namespace {
struct Entry {
    std::uint64_t values, dimensions;
    double re, im;
};

struct Numbers {
    std::vector<double> re, im;

    explicit Numbers(std::size_t count) : re(count), im(count) {}
    [[nodiscard]] double real(std::size_t i) const { return re[i]; }
    [[nodiscard]] double imaginary(std::size_t i) const { return im[i]; }
    void write(std::size_t i, double a, double b) {
        re[i] = a;
        im[i] = b;
    }
};

struct Entries {
    std::vector<Entry> list;

    explicit Entries(std::size_t count) : list(count) {
        for (std::size_t i = 0; i < count; ++i) list[i].values = i;
    }
    [[nodiscard]] double real(std::size_t i) const { return list[i].re; }
    [[nodiscard]] double imaginary(std::size_t i) const { return list[i].im; }
    void write(std::size_t i, double a, double b) { list[i] = {i, 0, a, b}; }
};

/// Where amplitudes stand in `List`; a gate reads one list and writes the other.
template <class List> class SameBits final : public Contender {
public:
    explicit SameBits(const Register& of) : of_(of), list_(of.size()), next_(of.size()) {}

    void load(const std::vector<Amplitude>& amplitudes) override {
        for (std::size_t i = 0; i < amplitudes.size(); ++i) list_.write(i, amplitudes[i].real(), amplitudes[i].imag());
    }

    [[nodiscard]] std::vector<Amplitude> amplitudes() const override {
        std::vector<Amplitude> all;
        for (std::size_t i = 0; i < of_.size(); ++i) all.emplace_back(list_.real(i), list_.imaginary(i));
        return all;
    }

    void apply(const Step& step) override {
        with_dimension(of_.dimension, [&](auto d) { fourier<d>(step.qudits[0], step.act == Act::inverse_fourier); });
        std::swap(list_, next_);
    }

private:
    template <std::size_t d> void fourier(std::size_t target, bool inverse) {
        double c[d][d], s[d][d];
        for (std::size_t k = 0; k < d; ++k)
            for (std::size_t v = 0; v < d; ++v) {
                const Amplitude factor = fourier_factor(d, k, v, inverse);
                c[k][v] = factor.real();
                s[k][v] = factor.imag();
            }
        const std::size_t stride = of_.stride(target);
        std::size_t small = 0, odd = 0;
        // Tiles of groups, so that vectors are full whatever the target is: lists of either kind are read and written
        // apart from the sums, which are the same for both.
        constexpr std::size_t width = 64;
        double x[d][width], y[d][width], a[d][width], b[d][width];
        std::size_t begins[width];
        const std::size_t groups = of_.size() / d;
        for (std::size_t first = 0; first < groups; first += width) {
            const std::size_t count = std::min(width, groups - first);
            for (std::size_t i = 0, block = first / stride, inner = first % stride; i < count; ++i) {
                begins[i] = block * d * stride + inner;
                if (++inner == stride) {
                    inner = 0;
                    ++block;
                }
            }
            for (std::size_t i = 0; i < count; ++i)
#pragma GCC unroll 10
                for (std::size_t v = 0; v < d; ++v) {
                    x[v][i] = list_.real(begins[i] + v * stride);
                    y[v][i] = list_.imaginary(begins[i] + v * stride);
                }
            for (std::size_t k = 0; k < d; ++k)
                for (std::size_t i = 0; i < count; ++i) {
                    double re = x[0][i] * c[k][0] - y[0][i] * s[k][0];
                    double im = x[0][i] * s[k][0] + y[0][i] * c[k][0];
#pragma GCC unroll 10
                    for (std::size_t v = 1; v < d; ++v) {
                        re += x[v][i] * c[k][v] - y[v][i] * s[k][v];
                        im += x[v][i] * s[k][v] + y[v][i] * c[k][v];
                    }
                    small += (std::abs(re) <= 0x1p-23) & (std::abs(im) <= 0x1p-23);
                    odd += (re != re) | (im != im);
                    a[k][i] = re;
                    b[k][i] = im;
                }
            for (std::size_t i = 0; i < count; ++i)
#pragma GCC unroll 10
                for (std::size_t k = 0; k < d; ++k) next_.write(begins[i] + k * stride, a[k][i], b[k][i]);
        }
        if (odd != 0) throw std::runtime_error("products with infinities are formed by other rules");
        dropped_ += small;
    }

    Register of_;
    List list_, next_;
    std::size_t dropped_ = 0;
};
} // namespace

std::unique_ptr<Contender> same_bits(const Register& of) { return std::make_unique<SameBits<Numbers>>(of); }

std::unique_ptr<Contender> same_entries(const Register& of) { return std::make_unique<SameBits<Entries>>(of); }
} // namespace peers

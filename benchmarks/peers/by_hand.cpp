/// What somebody would write: real and imaginary parts of all amplitudes in a list each, and plain loops over them for
/// the compiler to make vectors of.
#include "stretches.hpp"
#include <algorithm>

namespace peers {
namespace {
class ByHand final : public Contender {
public:
    explicit ByHand(const Register& of) : of_(of), re_(of.size()), im_(of.size()) {
        for (std::size_t i = 0; i <= of.qudits; ++i) strides_.push_back(of.stride(i));
    }

    void load(const std::vector<Amplitude>& amplitudes) override {
        for (std::size_t i = 0; i < amplitudes.size(); ++i) {
            re_[i] = amplitudes[i].real();
            im_[i] = amplitudes[i].imag();
        }
    }

    [[nodiscard]] std::vector<Amplitude> amplitudes() const override {
        std::vector<Amplitude> all;
        for (std::size_t i = 0; i < re_.size(); ++i) all.emplace_back(re_[i], im_[i]);
        return all;
    }

    [[nodiscard]] std::vector<Amplitude> read() const override {
        return reads_matrix_ ? matrix_ : std::vector<Amplitude>(probabilities_.begin(), probabilities_.end());
    }

    void apply(const Step& step) override {
        switch (step.act) {
        case Act::anew:
            std::vector<double>(of_.size()).swap(re_);
            std::vector<double>(of_.size()).swap(im_);
            re_[0] = 1;
            return;
        case Act::fourier:
        case Act::inverse_fourier: return with_dimension(of_.dimension, [&](auto d) { fourier<d>(step); });
        case Act::cycle: return cycle(step);
        case Act::clock: return clock(step, step.qudits[0], step.amount);
        case Act::phase:
            return walk(step, [&](std::size_t at, std::size_t run) {
                turn(at, run, std::polar(1.0, static_cast<double>(step.amount)));
            });
        case Act::swap: return swap(step);
        case Act::sum: return sum(step);
        case Act::transform: return transform();
        case Act::probabilities:
            reads_matrix_ = false;
            probabilities_.resize(re_.size());
            for (std::size_t i = 0; i < re_.size(); ++i)
                probabilities_[i] = static_cast<float>(re_[i] * re_[i] + im_[i] * im_[i]);
            return;
        case Act::matrix: return matrix(step);
        case Act::pair: return pair_by_hand();
        case Act::i_swap: break;
        }
        throw std::logic_error("is not written by hand");
    }

private:
    template <class Kernel> void walk(const Step& step, Kernel kernel) const {
        walk_stretches(of_, strides_, step, kernel);
    }

    template <std::size_t d> void fourier(const Step& step) {
        double c[d][d], s[d][d];
        for (std::size_t k = 0; k < d; ++k)
            for (std::size_t v = 0; v < d; ++v) {
                const Amplitude factor = fourier_factor(d, k, v, step.act == Act::inverse_fourier);
                c[k][v] = factor.real();
                s[k][v] = factor.imag();
            }
        const std::size_t stride = strides_[step.qudits[0]];
        walk(step, [&](std::size_t at, std::size_t run) {
            double* const re = re_.data() + at;
            double* const im = im_.data() + at;
#pragma GCC ivdep
            for (std::size_t i = 0; i < run; ++i) {
                double x[d], y[d];
#pragma GCC unroll 10
                for (std::size_t v = 0; v < d; ++v) {
                    x[v] = re[i + v * stride];
                    y[v] = im[i + v * stride];
                }
#pragma GCC unroll 10
                for (std::size_t k = 0; k < d; ++k) {
                    double a = 0, b = 0;
#pragma GCC unroll 10
                    for (std::size_t v = 0; v < d; ++v) {
                        a += x[v] * c[k][v] - y[v] * s[k][v];
                        b += x[v] * s[k][v] + y[v] * c[k][v];
                    }
                    re[i + k * stride] = a;
                    im[i + k * stride] = b;
                }
            }
        });
    }

    void turn(std::size_t at, std::size_t run, Amplitude by) {
        for (std::size_t i = at; i < at + run; ++i) {
            const double x = re_[i], y = im_[i];
            re_[i] = x * by.real() - y * by.imag();
            im_[i] = x * by.imag() + y * by.real();
        }
    }

    void clock(const Step& step, std::size_t qudit, float fraction) {
        std::vector<Amplitude> turns;
        for (std::size_t v = 0; v < of_.dimension; ++v)
            turns.push_back(std::polar(1.0, 2 * 3.141592653589793 / static_cast<double>(of_.dimension) *
                                                static_cast<double>(static_cast<float>(v) * fraction)));
        walk(step, [&](std::size_t at, std::size_t run) {
            for (std::size_t v = 1; v < of_.dimension; ++v) turn(at + v * strides_[qudit], run, turns[v]);
        });
    }

    /// Exchanges two stretches of equal length.
    void exchange(std::size_t a, std::size_t b, std::size_t run) {
        for (std::vector<double>* part : {&re_, &im_})
            std::swap_ranges(part->data() + a, part->data() + a + run, part->data() + b);
    }

    void raise(std::size_t at, std::size_t run, std::size_t stride) {
        for (std::size_t v = of_.dimension - 1; v > 0; --v) exchange(at + v * stride, at + (v - 1) * stride, run);
    }

    void cycle(const Step& step) {
        walk(step, [&](std::size_t at, std::size_t run) { raise(at, run, strides_[step.qudits[0]]); });
    }

    void swap(const Step& step) {
        const std::size_t a = strides_[step.qudits[0]], b = strides_[step.qudits[1]];
        walk(step, [&](std::size_t at, std::size_t run) {
            for (std::size_t v = 0; v < of_.dimension; ++v)
                for (std::size_t w = 0; w < v; ++w) exchange(at + v * a + w * b, at + w * a + v * b, run);
        });
    }

    void sum(const Step& step) {
        const std::size_t d = of_.dimension;
        const std::size_t control = strides_[step.qudits[0]], target = strides_[step.qudits[1]];
        walk(step, [&](std::size_t at, std::size_t run) {
            std::vector<double> row(d * run);
            for (std::vector<double>* part : {&re_, &im_})
                for (std::size_t c = 1; c < d; ++c) {
                    double* const from = part->data() + at + c * control;
                    for (std::size_t t = 0; t < d; ++t)
                        std::copy_n(from + t * target, run, row.data() + (t + c) % d * run);
                    for (std::size_t t = 0; t < d; ++t) std::copy_n(row.data() + t * run, run, from + t * target);
                }
        });
    }

    /// Gate by gate as the circuit is drawn, with the turns by all lower digits at once.
    void transform() {
        const std::size_t all = re_.size(), n = of_.qudits;
        for (std::size_t i = roots_.size(); i < all; ++i)
            roots_.push_back(
                std::polar(1.0, 2 * 3.141592653589793 * static_cast<double>(i) / static_cast<double>(all)));
        for (std::size_t j = n; j-- > 0;) {
            apply({Act::inverse_fourier, {j}, 0, {}});
            const std::size_t below = strides_[j], each = all / strides_[j + 1];
            for (std::size_t at = 0; at < all; at += strides_[j + 1])
                for (std::size_t v = 1; v < of_.dimension; ++v)
                    for (std::size_t x = 0; x < below; ++x) turn(at + v * below + x, 1, roots_[x * v * each]);
        }
        for (std::size_t i = 0; i < n / 2; ++i) apply({Act::swap, {i, n - 1 - i}, 0, {}});
    }

    void matrix(const Step& step) {
        std::size_t side = 1;
        std::vector<std::size_t> places{0};
        for (const std::size_t qudit : step.qudits) {
            std::vector<std::size_t> more;
            for (std::size_t v = 0; v < of_.dimension; ++v)
                for (const std::size_t place : places) more.push_back(place + v * strides_[qudit]);
            places = more;
            side *= of_.dimension;
        }
        reads_matrix_ = true;
        matrix_.assign(side * side, 0);
        walk(step, [&](std::size_t at, std::size_t run) {
            for (std::size_t r = 0; r < side; ++r)
                for (std::size_t c = 0; c <= r; ++c) {
                    const double* const x = re_.data() + at + places[r];
                    const double* const y = im_.data() + at + places[r];
                    const double* const u = re_.data() + at + places[c];
                    const double* const v = im_.data() + at + places[c];
                    double real = 0, imaginary = 0;
                    for (std::size_t i = 0; i < run; ++i) {
                        real += x[i] * u[i] + y[i] * v[i];
                        imaginary += y[i] * u[i] - x[i] * v[i];
                    }
                    matrix_[r * side + c] += Amplitude(real, imaginary);
                }
        });
        for (std::size_t r = 0; r < side; ++r)
            for (std::size_t c = r + 1; c < side; ++c) matrix_[r * side + c] = std::conj(matrix_[c * side + r]);
    }

    Register of_;
    std::vector<std::size_t> strides_;
    std::vector<double> re_, im_;
    std::vector<float> probabilities_;
    std::vector<Amplitude> matrix_;
    bool reads_matrix_ = false;
    std::vector<Amplitude> roots_; ///< of 1, for the transform of the whole register
};
} // namespace

std::unique_ptr<Contender> by_hand(const Register& of) { return std::make_unique<ByHand>(of); }
} // namespace peers

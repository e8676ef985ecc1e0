/// Contenders that Debian packages: matrix products of Eigen, transforms of FFTW, and libquantum, which holds qubits as
/// a list of basis states like the library, in single precision.
#include <Eigen/Core>
#include <fftw3.h>
#include <map>
#include <tuple>

extern "C" {
#include <quantum.h>
}

#include "contender.hpp"

namespace peers {
namespace {
class Dense : public Contender {
public:
    explicit Dense(const Register& of) : of_(of), list_(of.size()) {}
    void load(const std::vector<Amplitude>& amplitudes) override { list_ = amplitudes; }
    [[nodiscard]] std::vector<Amplitude> amplitudes() const override { return list_; }

protected:
    Register of_;
    std::vector<Amplitude> list_;
};

class ByEigen final : public Dense {
public:
    using Dense::Dense;

    void apply(const Step& step) override {
        with_dimension(of_.dimension, [&](auto d) { multiply<d>(step); });
    }

private:
    template <int d> void multiply(const Step& step) {
        Eigen::Matrix<Amplitude, d, d> gate;
        for (int k = 0; k < d; ++k)
            for (int v = 0; v < d; ++v)
                gate(v, k) = fourier_factor(d, static_cast<std::size_t>(k), static_cast<std::size_t>(v),
                                            step.act == Act::inverse_fourier);
        using Block = Eigen::Map<Eigen::Matrix<Amplitude, Eigen::Dynamic, d>>;
        const auto rows = static_cast<Eigen::Index>(of_.stride(step.qudits[0]));
        result_.resize(list_.size());
        for (std::size_t at = 0; at < list_.size(); at += static_cast<std::size_t>(rows * d))
            Block(result_.data() + at, rows, d).noalias() = Block(list_.data() + at, rows, d) * gate;
        list_.swap(result_);
    }

    std::vector<Amplitude> result_;
};

class ByFftw final : public Dense {
public:
    using Dense::Dense;
    ~ByFftw() override {
        for (const auto& [key, plan] : plans_) fftw_destroy_plan(plan);
    }

    void apply(const Step& step) override {
        const bool whole = step.act == Act::transform;
        const std::size_t length = whole ? list_.size() : of_.dimension;
        const std::size_t stride = whole ? 1 : of_.stride(step.qudits[0]);
        const int sign = step.act == Act::fourier ? FFTW_FORWARD : FFTW_BACKWARD;
        fftw_execute(plan(static_cast<int>(length), static_cast<int>(stride), sign));
        const double factor = 1 / std::sqrt(static_cast<double>(length));
        for (Amplitude& amplitude : list_) amplitude *= factor;
    }

private:
    /// The plan of transforms in place, measured when it is asked for first.
    fftw_plan plan(int length, int stride, int sign) {
        fftw_plan& plan = plans_[{length, stride, sign}];
        if (plan == nullptr) {
            const std::vector<Amplitude> kept = list_;
            auto* const data = reinterpret_cast<fftw_complex*>(list_.data());
            const int blocks = static_cast<int>(list_.size()) / (length * stride);
            const fftw_iodim of_one{length, stride, stride};
            const fftw_iodim of_all[] = {{blocks, length * stride, length * stride}, {stride, 1, 1}};
            plan = fftw_plan_guru_dft(1, &of_one, 2, of_all, data, data, sign, FFTW_MEASURE);
            list_ = kept; // in the same memory, as it is of the same size
        }
        return plan;
    }

    std::map<std::tuple<int, int, int>, fftw_plan> plans_;
};

class ByLibquantum final : public Contender {
public:
    explicit ByLibquantum(const Register& of) : of_(of) {
        if (of.dimension != 2) throw std::invalid_argument("libquantum has qubits only");
        list_ = quantum_new_qureg(0, static_cast<int>(of.qudits));
    }
    ~ByLibquantum() override { quantum_delete_qureg(&list_); }

    /// By a list of all labels, of which those are kept that have an amplitude.
    void load(const std::vector<Amplitude>& amplitudes) override {
        quantum_walsh(static_cast<int>(of_.qudits), &list_);
        int kept = 0;
        for (int i = 0; i < list_.size; ++i) {
            const std::complex<float> amplitude(amplitudes[list_.state[i]]);
            list_.state[kept] = list_.state[i];
            __real__ list_.amplitude[kept] = amplitude.real();
            __imag__ list_.amplitude[kept] = amplitude.imag();
            kept += amplitude != 0.0F;
        }
        list_.size = kept;
    }

    void apply(const Step& step) override {
        if (step.act == Act::pair) return pair();
        quantum_hadamard(static_cast<int>(step.qudits[0]), &list_); // its own inverse
    }

    [[nodiscard]] std::vector<Amplitude> amplitudes() const override {
        std::vector<Amplitude> all(of_.size());
        for (int i = 0; i < list_.size; ++i)
            all[list_.state[i]] = {__real__ list_.amplitude[i], __imag__ list_.amplitude[i]};
        return all;
    }

private:
    static void pair() {
        quantum_reg both = quantum_new_qureg(0, 2);
        quantum_hadamard(0, &both);
        quantum_cnot(0, 1, &both);
        const int first = quantum_bmeasure_bitpreserve(0, &both);
        if (first != quantum_bmeasure_bitpreserve(1, &both)) throw std::runtime_error("an entangled pair that differs");
        quantum_delete_qureg(&both);
    }

    Register of_;
    quantum_reg list_;
};
} // namespace

std::unique_ptr<Contender> by_eigen(const Register& of) { return std::make_unique<ByEigen>(of); }

std::unique_ptr<Contender> by_fftw(const Register& of) { return std::make_unique<ByFftw>(of); }

std::unique_ptr<Contender> by_libquantum(const Register& of) { return std::make_unique<ByLibquantum>(of); }
} // namespace peers

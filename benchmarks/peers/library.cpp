/// The library itself, through its public functions alone.
#include "contender.hpp"
#include "vantel.hpp"
#include <string>

namespace peers {
namespace {
void expect_ok(int status) {
    if (status != vantel_ok) throw std::runtime_error("the library reports status " + std::to_string(status));
}

void pair() {
    int status = vantel_ok;
    QuantumProperty* both[2];
    for (QuantumProperty*& qubit : both) qubit = vantel_make_quantum_property(2, &status);
    expect_ok(vantel_hadamard(both[0], nullptr, 0));
    const PredicateRecord raised{both[0], 1, 1};
    expect_ok(vantel_cycle(both[1], 1, &raised, 1));
    int levels[2];
    expect_ok(vantel_measure(both, 2, levels));
    if (levels[0] != levels[1]) throw std::runtime_error("an entangled pair that differs");
    for (QuantumProperty* const qubit : both) expect_ok(vantel_free_quantum_property(qubit));
}

class Library final : public Contender {
public:
    explicit Library(const Register& of) : of_(of) {}

    void load(const std::vector<Amplitude>&) override {
        throw std::logic_error("a state of the library is made by gates");
    }
    void apply(const Step& step) override;
    [[nodiscard]] std::vector<Amplitude> amplitudes() const override {
        throw std::logic_error("the library gives no amplitudes");
    }
    [[nodiscard]] std::vector<Amplitude> read() const override;

private:
    void anew();
    void read_probabilities();
    void read_matrix(const std::vector<std::size_t>& listed);

    Register of_;
    std::vector<vantel::Qudit> qudits_;
    std::vector<QuantumProperty*> handles_;
    std::vector<ProbabilityRecord> records_;
    std::vector<int> levels_;
    std::vector<float> real_, imaginary_;
    bool reads_matrix_ = false;
};

void Library::read_probabilities() {
    if (records_.empty()) {
        records_.resize(of_.size());
        levels_.resize(of_.size() * of_.qudits);
        for (std::size_t i = 0; i < records_.size(); ++i) records_[i].qudit_values = levels_.data() + i * of_.qudits;
    }
    reads_matrix_ = false;
    expect_ok(vantel_probabilities(handles_.data(), handles_.size(), records_.data()));
}

void Library::read_matrix(const std::vector<std::size_t>& listed) {
    std::vector<QuantumProperty*> list;
    std::size_t side = 1;
    for (const std::size_t qudit : listed) {
        list.push_back(handles_[qudit]);
        side *= of_.dimension;
    }
    real_.resize(side * side);
    imaginary_.resize(side * side);
    reads_matrix_ = true;
    expect_ok(vantel_reduced_density_matrix(list.data(), list.size(), real_.data(), imaginary_.data(), real_.size()));
}

std::vector<Amplitude> Library::read() const {
    std::vector<Amplitude> result;
    if (reads_matrix_)
        for (std::size_t i = 0; i < real_.size(); ++i) result.emplace_back(real_[i], imaginary_[i]);
    else
        for (const ProbabilityRecord& record : records_) result.emplace_back(record.probability);
    return result;
}

void Library::anew() {
    qudits_.clear();
    handles_.clear();
    qudits_ = vantel::make_register(of_.qudits, static_cast<int>(of_.dimension));
    for (vantel::Qudit& qudit : qudits_) handles_.push_back(qudit.handle());
}

void Library::apply(const Step& step) {
    PredicateRecord when[10];
    const std::size_t count = step.when.size();
    for (std::size_t i = 0; i < count; ++i) when[i] = {handles_[step.when[i].first], step.when[i].second, 1};
    const auto target = [&](std::size_t i) { return handles_[step.qudits[i]]; };
    switch (step.act) {
    case Act::anew: return anew();
    case Act::fourier: return expect_ok(vantel_hadamard(target(0), when, count));
    case Act::inverse_fourier: return expect_ok(vantel_inverse_hadamard(target(0), when, count));
    case Act::cycle: return expect_ok(vantel_cycle(target(0), 1, when, count));
    case Act::clock: return expect_ok(vantel_clock(target(0), step.amount, when, count));
    case Act::phase: return expect_ok(vantel_phase_rotate(when, count, step.amount));
    case Act::swap: return expect_ok(vantel_swap(target(0), target(1), when, count));
    case Act::i_swap: return expect_ok(vantel_i_swap(target(0), target(1), step.amount, when, count));
    case Act::sum: return vantel::sum(qudits_[step.qudits[0]], qudits_[step.qudits[1]]);
    case Act::transform: return vantel::fourier_transform(qudits_);
    case Act::probabilities: return read_probabilities();
    case Act::matrix: return read_matrix(step.qudits);
    case Act::pair: return pair();
    }
}
} // namespace

std::unique_ptr<Contender> library(const Register& of) { return std::make_unique<Library>(of); }
} // namespace peers

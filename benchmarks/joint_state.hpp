/// The states that the benchmarks run on, made through the C interface alone.
#pragma once

#include "vantel.h"
#include <cstddef>
#include <string>
#include <vector>

namespace benchmarks {
enum class Shape {
    single,   ///< one entry, all qudits in level 0
    dense,    ///< every combination of levels, in the order of its labels
    idle,     ///< the same, but the last qudit but one is still in level 0
    lacking,  ///< the same as dense, less a projection: no entry has the highest levels of the first four
              ///< qudits
    measured, ///< the same as dense, but the last qudit but one was measured
    diagonal, ///< two entries, all qudits in level 0 or all in level 1
    ghz,      ///< as many entries as a qudit has levels, all qudits in the same one
    w,        ///< as many entries as there are qudits, one of which is in level 1 and the others in 0
    scattered ///< entries of ten-level qudits with labels and an order of no pattern
};

struct Description {
    std::string name;
    Shape shape;
    std::vector<int> dimensions;
    std::vector<std::size_t> conditions; ///< the numbers of conditions that gates are run with
    bool transforms_only = false;
    bool never_met = false;              ///< the first condition asks an idle qudit for level 1
    std::size_t scattered_count = 50000; ///< of entries: 1 or 5 times a power of ten

    [[nodiscard]] std::size_t combinations() const; ///< of levels, whether stored or not
    [[nodiscard]] std::size_t entries() const;
    [[nodiscard]] int target_dimension() const { return dimensions[dimensions.size() / 2]; }
};

/// Ends the program unless a call that prepares a state reports success.
void expect_ok(int status);

[[nodiscard]] QuantumProperty* made(int dimension);

/// Qudits in one joint state. Owns their handles.
class JointState {
public:
    explicit JointState(const Description& description, std::size_t condition_count = 0);
    ~JointState();
    JointState(const JointState&) = delete;
    JointState& operator=(const JointState&) = delete;

    std::vector<QuantumProperty*> qudits;
    QuantumProperty* target;                 ///< stands in the middle
    QuantumProperty* other;                  ///< stands last, beside the target or, alone, is it
    std::vector<PredicateRecord> conditions; ///< the first "is 1", the second "is not 0", on the first qudits

private:
    void make_qudits();
    void free_qudits();
    void make_dense(std::size_t idle);
    void make_lacking();
    void make_measured();
    void make_diagonal();
    void make_ghz();
    void make_w();
    void make_scattered(std::size_t entries);

    std::vector<int> dimensions_;
};

/// What a caller of vantel_probabilities() provides.
class OutcomeRecords {
public:
    OutcomeRecords(std::size_t rows, std::size_t columns);
    std::vector<ProbabilityRecord> rows;

private:
    std::vector<int> levels_;
};
} // namespace benchmarks

// Bytes become calls. The first byte of a call, taken modulo 18, says which; what follows are its arguments,
// one byte each, and a byte beyond the end counts as 0.
//
//      0  vantel_version
//      1  vantel_make_quantum_property    dimension
//      2  vantel_free_quantum_property    handle, or 255 for null
//      3  vantel_hadamard                 handle, conditions
//      4  vantel_inverse_hadamard         handle, conditions
//      5  vantel_cycle                    handle, fraction, conditions
//      6  vantel_shift                    handle, fraction, conditions
//      7  vantel_clock                    handle, fraction, conditions
//      8  vantel_phase_rotate             conditions, angle
//      9  vantel_swap                     handle, handle, conditions
//     10  vantel_i_swap                   handle, handle, fraction, conditions
//     11  vantel_measure                  list, random word
//     12  vantel_stochastic_projection    conditions, random word
//     13  vantel_probabilities            list
//     14  vantel_reduced_density_matrix   list, output size
//     15  a joint state made from inside: build, qudits, entries, flags, dice
//     16  a gate from inside, with a target list: handle, gate, fraction, targets, conditions by index
//     17  a readout from inside, with its rows in their order: handle, readout, random word, list by index
//
// A list is its length and its handles; conditions are their number and, each, a handle and a comparison. A
// call is left out where it would end the process or the model would take too long.
#include "tests/fuzz/calls.hpp"
#include "interface/quantum_property.hpp"
#include "reference/literal_library.hpp"
#include "tests/support/handles.hpp"
#include "tests/support/random_source.hpp"
#include "tests/support/states.hpp"
#include <array>
#include <limits>
#include <random>
#include <set>

namespace vantel::testing {
namespace {
using namespace reference;
using qudit::IState;
using testing::Entries;
using testing::Entry;

struct Mismatch {
    std::string text;
};

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

constexpr std::array odd_dimensions{0, 1, 11, 16, -1, lowest, highest};
constexpr std::array odd_levels{lowest, -1, 15, 16, 1 << 20, highest};
constexpr std::array<unsigned char, 4> truths{0, 1, 2, 255};
constexpr std::array condition_counts{0, 0, 0, 1, 1, 1, 2, 3};
constexpr std::array list_lengths{1, 1, 2, 2, 3, 3, 4, 8};
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr std::array fractions{1.0F, 0.5F, 0.0F,  -0.0F,      -1.0F, 0.25F,    2.0F,
                               0.1F, 3.3F, 1e10F, 1.0000001F, 1e38F, infinity, nan};
constexpr std::array entry_counts{0, 1, 2, 5, 12, 17, 33, 60, 150, 300, 520, 700, 1100, 1500, 2000, 2600};
using wide = std::numeric_limits<double>;
constexpr double t = 0x1p-23;
constexpr std::array special_parts{0.0,   -0.0,  wide::infinity(),      -wide::infinity(),      wide::quiet_NaN(),
                                   t,     -t,    0x1.0000000000001p-23, -0x1.0000000000001p-23, 1e-8,
                                   1e300, 5e-324};

template <class Items> auto& pick(Items& items, std::size_t byte) { return items[byte % std::size(items)]; }

class TwoWorlds {
    struct Live {
        QuantumProperty* handle;
        HandleId id;
    };
    struct Conditions {
        std::vector<PredicateRecord> records;
        HandleControls model;
        // Null where there are none.
        const PredicateRecord* data() const { return records.empty() ? nullptr : records.data(); }
    };
    struct List {
        std::vector<QuantumProperty*> handles;
        HandleList model;
        double combinations = 1;
    };
    using PlainGate = int (*)(QuantumProperty*, const PredicateRecord*, std::size_t);
    using PowerGate = int (*)(QuantumProperty*, float, const PredicateRecord*, std::size_t);

public:
    TwoWorlds(std::span<const std::uint8_t> bytes, double budget, std::ostream* trace)
        : bytes_(bytes), budget_(budget), trace_(trace) {}
    TwoWorlds(const TwoWorlds&) = delete;
    TwoWorlds& operator=(const TwoWorlds&) = delete;

    ~TwoWorlds() {
        for (const Live& live : live_) {
            IState& state = *live.handle->shared_state->state;
            if (state.packed_amplitudes().size() > max_entries) { // freed like this, it would end the process
                Ints all;
                for (int i = 0; i < static_cast<int>(state.num_qudits()); ++i) all.push_back(i);
                state.measure(all);
            }
            vantel_free_quantum_property(live.handle);
        }
    }

    Run run() {
        Run done;
        try {
            for (; next_ < bytes_.size() && budget_ > 0; ++done.calls) {
                call(byte() % 18);
                compare();
            }
        } catch (const Mismatch& mismatch) {
            say("\n");
            done.mismatch = mismatch.text;
            live_.clear(); // nothing is known of them any more
        }
        return done;
    }

private:
    // Arguments, each of which says itself.

    template <class... Parts> void say(const Parts&... parts) const {
        if (trace_ != nullptr) ((*trace_ << parts), ...) << std::flush;
    }

    std::uint8_t byte() { return next_ < bytes_.size() ? bytes_[next_++] : std::uint8_t{0}; }

    const Live& handle() { return say_handle(pick(live_, byte())); }

    /// More often than not one of the same joint state, so that not everything is merged at once.
    const Live& handle_beside(const Live& other) {
        const std::uint8_t b = byte();
        std::vector<const Live*> near;
        for (const Live& live : live_)
            if (model_.same_joint_state(live.id, other.id)) near.push_back(&live);
        return say_handle(b < 192 ? *pick(near, b) : pick(live_, b));
    }

    const Live& say_handle(const Live& live) {
        say(" q", live.id);
        return live;
    }

    float fraction() {
        const int b = byte();
        const float f = b < 128 ? pick(fractions, static_cast<std::size_t>(b)) : static_cast<float>(b - 192) / 16.0F;
        say(" ", f);
        return f;
    }

    /// The level in the low bits and the way to compare in the high ones.
    std::pair<int, unsigned char> comparison() {
        const unsigned low = byte();
        const unsigned char is_equal = pick(truths, low >> 6);
        const auto v = static_cast<int>(low % 64);
        const int value = v < 44 ? v % 4 : v < 56 ? v % 11 : pick(odd_levels, low);
        say(is_equal != 0 ? " == " : " != ", value);
        return {value, is_equal};
    }

    Conditions conditions(const Live* target = nullptr) {
        Conditions drawn;
        for (int i = pick(condition_counts, byte()); i > 0; --i) {
            say(drawn.model.empty() ? " if" : " and");
            const Live& live = target == nullptr ? handle() : handle_beside(*target);
            const auto [value, is_equal] = comparison();
            target = &live;
            drawn.records.push_back({live.handle, value, is_equal});
            drawn.model.push_back({live.id, value, is_equal != 0});
        }
        return drawn;
    }

    /// At least one handle, and no more than have a table of `most` rows.
    List list(double most) {
        List drawn;
        const Live* beside = nullptr;
        for (int i = pick(list_lengths, byte()); i > 0; --i) {
            const Live& live = beside == nullptr ? handle() : handle_beside(*beside);
            beside = &live;
            const LiteralState& state = model_.state(live.id);
            const int index = model_.index(live.id);
            const auto levels = static_cast<double>(state.qudit_dimension(index));
            if (!drawn.model.empty() && drawn.combinations * levels > most) break;
            drawn.combinations *= levels;
            drawn.handles.push_back(live.handle);
            drawn.model.push_back(live.id);
        }
        return drawn;
    }

    // The two worlds held together.

    bool can_pay(double work) {
        if (work > budget_) {
            say(" (left out)");
            return false;
        }
        budget_ -= work;
        return true;
    }

    /// Whether the call is to be made. @param work  of the model for each entry of the joint state
    template <class Work> bool admits(const HandleList& list, Work work) {
        double entries = 1;
        double dimension = 2;
        double merging = 0;
        bool too_large = false;
        std::set<const LiteralState*> related;
        for (const HandleId id : list) {
            const LiteralState& state = model_.state(id);
            dimension = std::max(dimension, static_cast<double>(state.dimension()));
            if (too_large || !related.insert(&state).second) continue;
            entries *= static_cast<double>(state.basis_amplitudes().size());
            too_large = related.size() > 1 && entries > max_entries;
            if (related.size() > 1) merging += too_large ? entries : construction(entries);
        }
        return can_pay(merging + (too_large ? 0 : entries * work(entries, dimension)));
    }

    /// Whether a call would end the process. @param act  makes it in the model that it is given
    template <class Act> bool ends_process(Act act) const {
        Library trial = model_;
        try {
            act(trial);
        } catch (const EndOfProcess&) {
            say(" (would end the process)");
            return true;
        }
        return false;
    }

    /// The work of building a state, which searches for repeated labels.
    static double construction(double entries) { return entries * entries / 8; }

    static HandleList with(HandleList list, const Conditions& conditions) {
        for (const HandleControl& control : conditions.model) list.push_back(control.property);
        return list;
    }

    template <class Actual> void expect(const Outcome& expected, Actual actual) {
        Outcome seen;
        {
            const Diagnostics diagnostics;
            try {
                seen.status = actual();
            } catch (const std::exception& failure) {
                seen.passed_out = true;
                seen.exception_text = failure.what();
                seen.exception_type = typeid(failure).name();
            }
            seen.stderr_text = diagnostics.text();
        }
        say(" -> ", seen.passed_out ? seen.exception_text : std::to_string(seen.status));
        const auto told = [](const Outcome& o) {
            return "status " + std::to_string(o.passed_out ? 0 : o.status) + ", text \"" + o.stderr_text +
                   "\", passed out: " + o.exception_type + " \"" + o.exception_text + "\"";
        };
        require(told(seen) == told(expected), told(seen) + "\nand not " + told(expected));
    }

    static void require(bool holds, const std::string& text) {
        if (!holds) throw Mismatch{text};
    }

    void compare() {
        for (std::size_t i = 0; i < live_.size(); ++i) {
            const auto& [handle, id] = live_[i];
            const std::string name = "q" + std::to_string(id);
            require(handle->index == model_.index(id), "index of " + name + ": " + std::to_string(handle->index) +
                                                           ", not " + std::to_string(model_.index(id)));
            std::size_t first = 0;
            while (live_[first].handle->shared_state != handle->shared_state) ++first;
            std::size_t literal_first = 0;
            while (!model_.same_joint_state(live_[literal_first].id, id)) ++literal_first;
            require(first == literal_first, "joint state of " + name);
            if (first == i) compare_joint_state(*handle->shared_state, id, "joint state of " + name);
        }
        say("\n");
    }

    void compare_joint_state(const QuantumProperty::SharedState& shared, HandleId id, const std::string& name) {
        const LiteralState& literal = model_.state(id);
        budget_ -= static_cast<double>(literal.basis_amplitudes().size());
        require(shared.state->num_qudits() == literal.num_qudits(), name + ": number of qudits");
        require(shared.state->dimension() == literal.dimension(), name + ": dimension");
        const auto same = same_entries(shared.state->basis_amplitudes(), literal.basis_amplitudes());
        require(same, name + ": " + same.message());
        const std::vector<Position>& positions = model_.properties(id);
        require(shared.properties.size() == positions.size(), name + ": length of the list of handles");
        for (std::size_t i = 0; i < positions.size(); ++i) {
            const auto named = [&](const Live& live) { return live.id == positions[i].handle; };
            require(shared.is_stale(i) == positions[i].stale &&
                        (positions[i].stale ||
                         std::find_if(live_.begin(), live_.end(), named)->handle == shared.properties[i]),
                    name + ": handle at position " + std::to_string(i));
        }
    }

    // The calls.

    void call(int which) {
        if (live_.empty() && which > 2 && which != 15) which = 1;
        return which == 0    ? static_cast<void>(vantel_version())
               : which == 1  ? make()
               : which == 2  ? free()
               : which == 3  ? plain("hadamard", vantel_hadamard, &Library::hadamard)
               : which == 4  ? plain("inverse_hadamard", vantel_inverse_hadamard, &Library::inverse_hadamard)
               : which == 5  ? power("cycle", vantel_cycle, &Library::cycle, true)
               : which == 6  ? power("shift", vantel_shift, &Library::shift, true)
               : which == 7  ? power("clock", vantel_clock, &Library::clock, false)
               : which == 8  ? phase_rotate()
               : which < 11  ? exchange(which == 10)
               : which == 11 ? measure()
               : which == 12 ? stochastic_projection()
               : which == 13 ? probabilities()
               : which == 14 ? reduced_density_matrix()
               : which == 15 ? make_joint_state()
               : which == 16 ? gate_from_inside()
                             : readout_from_inside();
    }

    bool crowded(std::size_t more) {
        constexpr std::size_t most_handles = 14;
        if (live_.size() + more <= most_handles) return false;
        say(" (left out)");
        return true;
    }

    void make() {
        const unsigned b = byte() % 16;
        const int dimension = b < 9 ? static_cast<int>(b) + 2 : odd_dimensions[b - 9];
        say("make ", dimension);
        if (crowded(1)) return;
        HandleId id = no_handle;
        const Outcome expected = model_.make_quantum_property(dimension, id);
        QuantumProperty* handle = nullptr;
        expect(expected, [&] {
            int status = -1;
            handle = vantel_make_quantum_property(dimension, &status);
            return status;
        });
        require((handle != nullptr) == (id != no_handle), "handle that was made");
        if (handle != nullptr) live_.push_back({handle, id});
    }

    void free() {
        say("free");
        const std::size_t b = byte();
        if (b == 255 || live_.empty())
            return expect(model_.free_quantum_property(no_handle),
                          [] { return vantel_free_quantum_property(nullptr); });
        const Live live = pick(live_, b);
        say(" q", live.id);
        const auto entries = static_cast<double>(model_.state(live.id).basis_amplitudes().size());
        if (model_.release_ends_process(live.id) || !can_pay(construction(entries))) return say(" (left out)");
        live_.erase(live_.begin() + static_cast<std::ptrdiff_t>(b % live_.size()));
        expect(model_.free_quantum_property(live.id), [&] { return vantel_free_quantum_property(live.handle); });
    }

    void plain(const char* name, PlainGate gate, Outcome (Library::*literal)(HandleId, const HandleControls&)) {
        say(name);
        const Live target = handle();
        const Conditions c = conditions(&target);
        if (admits(with({target.id}, c), [](double, double d) { return d; }))
            expect((model_.*literal)(target.id, c.model),
                   [&] { return gate(target.handle, c.data(), c.records.size()); });
    }

    void power(const char* name, PowerGate gate, Outcome (Library::*literal)(HandleId, float, const HandleControls&),
               bool transforms) {
        say(name);
        const Live target = handle();
        const float f = fraction();
        const Conditions c = conditions(&target);
        const auto in_model = [&](Library& model) { return (model.*literal)(target.id, f, c.model); };
        if (admits(with({target.id}, c), [&](double, double d) { return transforms && f != 1.0F ? d * d : 1; }) &&
            !ends_process(in_model))
            expect(in_model(model_), [&] { return gate(target.handle, f, c.data(), c.records.size()); });
    }

    void phase_rotate() {
        say("phase_rotate");
        const Conditions c = conditions();
        const float angle = fraction();
        if (c.model.empty() || admits(with({}, c), [](double, double) { return 1; }))
            expect(model_.phase_rotate(c.model, angle),
                   [&] { return vantel_phase_rotate(c.data(), c.records.size(), angle); });
    }

    void exchange(bool fractional) {
        say(fractional ? "i_swap" : "swap");
        const Live a = handle();
        const Live b = handle_beside(a);
        const float f = fractional ? fraction() : 1.0F;
        const Conditions c = conditions(&a);
        if (!admits(with({a.id, b.id}, c), [](double, double) { return 3; })) return;
        if (fractional)
            expect(model_.i_swap(a.id, b.id, f, c.model),
                   [&] { return vantel_i_swap(a.handle, b.handle, f, c.data(), c.records.size()); });
        else
            expect(model_.swap(a.id, b.id, c.model),
                   [&] { return vantel_swap(a.handle, b.handle, c.data(), c.records.size()); });
    }

    void measure() {
        say("measure");
        List l = list(1e9);
        const std::uint32_t word = byte();
        if (!admits(l.model, [&](double n, double) { return std::min(n, l.combinations); })) return;
        Ints expected(l.model.size(), untouched);
        Ints levels = expected;
        const RandomSource source(word);
        const Outcome outcome = model_.measure(l.model, word, expected);
        expect(outcome, [&] { return vantel_measure(l.handles.data(), l.handles.size(), levels.data()); });
        require(levels == expected, "measured levels");
    }

    void stochastic_projection() {
        say("stochastic_projection");
        const Conditions c = conditions();
        const std::uint32_t word = byte();
        if (!admits(with({}, c), [](double n, double) { return n; })) return;
        int expected = untouched;
        int result = untouched;
        const RandomSource source(word);
        const Outcome outcome = model_.stochastic_projection(c.model, word, expected);
        expect(outcome, [&] { return vantel_stochastic_projection(c.data(), c.records.size(), &result); });
        require(result == expected, "answer " + std::to_string(result));
    }

    void probabilities() {
        say("probabilities");
        List l = list(2000);
        if (!admits(l.model, [&](double, double) { return 4 * l.combinations; })) return;
        Library::Records expected;
        const Outcome outcome = model_.probabilities(l.model, expected);
        const std::size_t rows = std::max<std::size_t>(expected.size(), 1); // one that a failure leaves
        if (expected.empty()) expected.emplace_back(Ints(l.model.size(), untouched), untouched);
        Ints levels(rows * l.model.size(), untouched);
        std::vector<ProbabilityRecord> records;
        for (std::size_t i = 0; i < rows; ++i) records.push_back({untouched, levels.data() + i * l.model.size()});
        expect(outcome, [&] { return vantel_probabilities(l.handles.data(), l.handles.size(), records.data()); });
        for (std::size_t i = 0; i < rows; ++i)
            require(std::equal(expected[i].first.begin(), expected[i].first.end(), records[i].qudit_values) &&
                        same_bits(records[i].probability, expected[i].second),
                    "row " + std::to_string(i) + ": " + std::to_string(records[i].probability));
    }

    void reduced_density_matrix() {
        say("reduced_density_matrix");
        List l = list(64);
        const auto right = static_cast<std::size_t>(l.combinations * l.combinations);
        const std::array sizes{std::size_t{0}, right - 1, right + 1, right + (std::size_t{1} << 32)};
        const int b = byte() % 16;
        const std::size_t size = b < 4 ? sizes[static_cast<std::size_t>(b)] : right;
        say(" into ", size);
        if (!admits(l.model, [&](double n, double) { return n * std::min(n, l.combinations * l.combinations); }))
            return;
        std::vector<float> real(right + 1, untouched), imaginary(real), expected_real(real), expected_imaginary(real);
        const Outcome outcome = model_.reduced_density_matrix(l.model, size, expected_real, expected_imaginary);
        expect(outcome, [&] {
            return vantel_reduced_density_matrix(l.handles.data(), l.handles.size(), real.data(), imaginary.data(),
                                                 size);
        });
        expected_real.resize(right + 1, untouched);
        expected_imaginary.resize(right + 1, untouched);
        for (std::size_t i = 0; i < real.size(); ++i)
            require(same_bits(real[i], expected_real[i]) && same_bits(imaginary[i], expected_imaginary[i]),
                    "element " + std::to_string(i));
    }

    /// What no sequence of calls reaches: labels that repeat or exceed their own dimension, amplitudes of
    /// every kind, and thousands of entries at once.
    void make_joint_state() {
        const std::uint64_t build = 2 + byte() % 9;
        const std::size_t qudits = 1 + byte() % 10;
        const int count = pick(entry_counts, byte());
        const unsigned flags = byte();
        const bool beyond_own_dimension = (flags & 3) == 0;
        const bool successive = (flags & 4) != 0;
        const bool special = (flags & 8) != 0;
        const bool full = (flags & 16) != 0;
        std::mt19937 dice(byte());
        say("joint state of ", qudits, " qudits, ", count, " entries, build ", build, ", flags ", flags);
        if (crowded(qudits) || !can_pay(construction(count))) return;
        const auto roll = [&](std::uint64_t sides) { return dice() % sides; };
        Levels dimensions;
        for (std::size_t i = 0; i < qudits; ++i) dimensions.push_back(full ? build : 2 + roll(build - 1));
        Levels ends = beyond_own_dimension ? Levels(qudits, build) : dimensions;
        Levels label;
        for (const std::uint64_t end : ends) label.push_back(roll(end));
        const auto part = [&] {
            return special && roll(8) == 0 ? pick(special_parts, dice())
                                           : std::uniform_real_distribution<>(-1.0, 1.0)(dice);
        };
        std::vector<Term> terms;
        for (int k = 0; k < count; ++k) {
            for (std::size_t i = 0;
                 i < qudits && (!successive || (label[i] + 1) % ends[i] == 0 || i == 0 || label[i - 1] == 0); ++i)
                label[i] = successive ? (label[i] + 1) % ends[i] : roll(ends[i]);
            const double real = part();
            terms.push_back({label, {real, part()}});
        }
        const Entries entries = entries_of(dimensions, terms);
        std::unique_ptr<IState> state = Factory::make_unique_state({build, qudits}, entries);
        const HandleId first = model_.adopt({{build, qudits}, entries});
        const auto own = new QuantumProperty(std::move(state), 0);
        live_.push_back({own, first});
        for (int i = 1; i < static_cast<int>(qudits); ++i) {
            const auto another = new QuantumProperty(make_quantum_property(2));
            another->shared_state = own->shared_state;
            another->index = i;
            own->shared_state->properties.push_back(another);
            live_.push_back({another, first + i});
        }
    }

    Ints indices(int most, int end) {
        Ints drawn;
        for (int i = byte() % (most + 1); i > 0; --i) {
            drawn.push_back(byte() % end);
            say(" ", drawn.back());
        }
        return drawn;
    }

    /// @return what either world let pass, which must be the same
    template <class Act> std::string both(const Live& live, Act act) {
        const auto actual = thrown_by([&] { act(*live.handle->shared_state->state, true); });
        const auto expected = thrown_by([&] { act(model_.merge({live.id}), false); });
        require(actual == expected, actual.second + "\nand not " + expected.second);
        return actual.second;
    }

    void gate_from_inside() {
        say("inside");
        const Live live = handle();
        const int gate = byte() % 9;
        const float f = fraction();
        const LiteralState& state = model_.state(live.id);
        const auto qudits = static_cast<int>(state.num_qudits());
        say(" gate ", gate, " on");
        const Ints targets = indices(3, qudits);
        Controls controls;
        for (int i = byte() % 4; i > 0; --i) {
            const int index = byte() % qudits;
            say(" if ", index);
            const auto [value, is_equal] = comparison();
            controls.push_back({index, value, is_equal != 0});
        }
        double work = static_cast<double>(state.basis_amplitudes().size());
        for (std::size_t i = 0; i < targets.size(); ++i)
            work *= std::pow(static_cast<double>(state.dimension()), gate < 2 ? 2 : gate < 4 ? 1 : 0);
        if (!can_pay(work)) return;
        both(live, [&](auto& s, bool) {
            return gate == 0   ? s.shift(targets, f, controls)
                   : gate == 1 ? s.cycle(targets, f, controls)
                   : gate == 2 ? s.hadamard(targets, controls)
                   : gate == 3 ? s.inverse_hadamard(targets, controls)
                   : gate == 4 ? s.shift(targets, controls)
                   : gate == 5 ? s.cycle(targets, controls)
                   : gate == 6 ? s.clock(targets, controls)
                   : gate == 7 ? s.clock(targets, f, controls)
                               : s.phase_rotate(controls, f);
        });
    }

    void readout_from_inside() {
        say("inside");
        const Live live = handle();
        const int readout = byte() % 3;
        const std::uint32_t word = byte();
        const LiteralState& state = model_.state(live.id);
        const auto qudits = static_cast<int>(state.num_qudits());
        const auto entries = static_cast<double>(state.basis_amplitudes().size());
        say(" readout ", readout, " of");
        const Ints listed = indices(qudits, qudits + (readout < 2 && word % 16 == 0 ? 1 : 0));
        if (!can_pay(entries * entries * (readout == 2 ? entries / 4 : 1))) return;
        std::vector<qudit::QuditsProbability> rows[2];
        std::vector<qudit::DensityMatrixEntry> elements[2];
        Ints levels[2];
        const RandomSource source(word);
        both(live, [&](auto& s, bool of_library) {
            if (readout == 0)
                rows[of_library] = s.probabilities(listed);
            else if (readout == 2)
                elements[of_library] = s.reduced_density_matrix(listed);
            else if constexpr (requires { s.measure(listed, word); })
                levels[0] = s.measure(listed, word);
            else
                levels[1] = s.measure(listed);
        });
        require(std::equal(rows[0].begin(), rows[0].end(), rows[1].begin(), rows[1].end(),
                           [](const auto& a, const auto& b) {
                               return a.qudit_values == b.qudit_values && same_bits(a.probability, b.probability);
                           }),
                "probabilities");
        require(std::equal(elements[0].begin(), elements[0].end(), elements[1].begin(), elements[1].end(),
                           [](const auto& a, const auto& b) {
                               return a.row_values == b.row_values && a.column_values == b.column_values &&
                                      same_bits(a.element, b.element);
                           }),
                "density matrix");
        require(levels[0] == levels[1], "measured levels");
    }

    static constexpr int untouched = -7;

    std::span<const std::uint8_t> bytes_;
    std::size_t next_ = 0;
    double budget_;
    std::ostream* trace_;
    Library model_;
    std::vector<Live> live_;
};
} // namespace

Run run_calls(std::span<const std::uint8_t> bytes, double budget, std::ostream* trace) {
    return TwoWorlds(bytes, budget, trace).run();
}
} // namespace vantel::testing

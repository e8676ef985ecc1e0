#pragma once

#include "state/state_factory.hpp"
#include <bit>
#include <cmath>
#include <complex>
#include <csignal>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <typeinfo>
#include <unistd.h>
#include <vector>

namespace vantel::testing {
using Factory = qudit::StateFactory<10, 10>;
using Entry = qudit::BasisAmplitudeData;
using Entries = std::vector<Entry>;
using Levels = std::vector<std::uint64_t>;
using Complex = std::complex<double>;

/// One NaN is as good as another; of every other number each bit counts, the sign of a zero too.
inline bool same_bits(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}
inline bool same_bits(const Complex& a, const Complex& b) {
    return same_bits(a.real(), b.real()) && same_bits(a.imag(), b.imag());
}

inline ::testing::AssertionResult same_entries(const Entries& actual, const Entries& expected) {
    if (actual.size() != expected.size())
        return ::testing::AssertionFailure() << actual.size() << " entries, not " << expected.size();
    for (std::size_t i = 0; i < actual.size(); ++i)
        if (actual[i].dits != expected[i].dits || !same_bits(actual[i].amplitude, expected[i].amplitude)) {
            std::ostringstream text;
            text << std::hexfloat << "entry " << i << ": " << actual[i].dits << actual[i].amplitude << ", not "
                 << expected[i].dits << expected[i].amplitude;
            return ::testing::AssertionFailure() << text.str();
        }
    return ::testing::AssertionSuccess();
}

struct Term {
    Levels levels;
    Complex amplitude;
};

/// Entries of qudits of the given dimensions.
inline Entries entries_of(const Levels& dimensions, const std::vector<Term>& terms) {
    Entries entries;
    for (const Term& term : terms) {
        entries.push_back({{}, term.amplitude});
        for (std::size_t i = 0; i < dimensions.size(); ++i)
            entries.back().dits.push_back({term.levels[i], dimensions[i]});
    }
    return entries;
}

inline std::unique_ptr<qudit::IState> state_of(const Levels& dimensions, const std::vector<Term>& terms) {
    return Factory::make_unique_state({*std::max_element(dimensions.begin(), dimensions.end()), dimensions.size()},
                                      entries_of(dimensions, terms));
}

/// What a call let pass: the class and the text of its exception, or nothing.
using Passed = std::pair<std::string, std::string>;
inline Passed thrown_by(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::exception& failure) {
        return {typeid(failure).name(), failure.what()};
    }
    return {};
}
template <class Failure> Passed failure(const char* text) { return {typeid(Failure).name(), text}; }

/// Expects that the process ends, with the text on standard output, and that no handler gets a chance.
inline void expect_end(const std::function<void()>& act, const char* text) {
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            std::cerr.rdbuf(nullptr);
            try {
                act();
            } catch (...) {
            }
            _exit(0);
        },
        ::testing::KilledBySignal(SIGABRT), text);
}
} // namespace vantel::testing

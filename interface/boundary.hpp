/// The one place where exceptions become status codes.
#pragma once

#include "interface/quantum_property.hpp"
#include "interface/vantel.h"
#include "state/exceptions.hpp"
#include <iostream>
#include <limits>
#include <new>

namespace vantel {
/// The status code of an exception class.
template <class Failure> inline constexpr int status_of = vantel_ok;
template <> inline constexpr int status_of<qudit::TargetControlOverlap> = vantel_target_control_overlap;
template <> inline constexpr int status_of<qudit::DifferentDimensions> = vantel_different_dimensions;
template <> inline constexpr int status_of<qudit::BadDimension> = vantel_bad_dimension;
template <> inline constexpr int status_of<qudit::BadQuditNumber> = vantel_bad_qudit_number;
template <> inline constexpr int status_of<qudit::StateSizeExceeded> = vantel_state_size_exceeded;

/// Runs the body of an exported function. There is one handler for each class that the function lists, and none for
/// anything else: whatever is not listed passes out untouched. The lists differ from function to function on purpose.
/// @return vantel_ok, or the code of the failure that was handled, whose text then stands on std::cerr
template <class... Handled> struct Translate {
    template <class Body> static int run(Body body) {
        body();
        return vantel_ok;
    }
};
template <class First, class... Rest> struct Translate<First, Rest...> {
    template <class Body> static int run(Body body) {
        try {
            return Translate<Rest...>::run(body);
        } catch (const First& failure) {
            std::cerr << failure.what() << '\n';
            return status_of<First>;
        }
    }
};

/// Refuses a caller's count that no list can have, before any pointer is formed.
/// @throws std::length_error where its top bit is set; std::bad_alloc where no memory could hold as many
template <class Element> void refuse_count(std::size_t count) {
    if (count > std::numeric_limits<std::ptrdiff_t>::max()) throw std::length_error("a count with its top bit set");
    if (count > std::numeric_limits<std::ptrdiff_t>::max() / sizeof(Element)) throw std::bad_alloc();
}

/// A caller's conditions.
using Conditions = ShortList<QuantumProperty::Predicate, qudit::MAX_QUDIT_NUM>;

/// A copy of a caller's conditions; `records` may be null where `count` is 0. @throws what refuse_count raises
inline Conditions conditions(const PredicateRecord* records, std::size_t count) {
    refuse_count<QuantumProperty::Predicate>(count);
    Conditions copy(count);
    for (std::size_t i = 0; i < count; ++i) copy[i] = {records[i].property, records[i].value, records[i].is_equal != 0};
    return copy;
}

/// A copy of a caller's property list, under the same terms.
inline std::vector<QuantumProperty*> listed(QuantumProperty** properties, std::size_t count) {
    refuse_count<QuantumProperty*>(count);
    return {properties, properties + count};
}
} // namespace vantel

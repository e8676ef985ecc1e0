/**
 * @file vantel_lists.hpp
 * @brief Header-only, beside vantel.hpp: lists of qudits as arguments.
 */
#ifndef VANTEL_LISTS_HPP
#define VANTEL_LISTS_HPP

#include "vantel.hpp" // refuses what is older than C++20

#if __cplusplus >= 202002L || (defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)

#include <concepts>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <ranges>
#include <type_traits>
#include <vector>

namespace vantel {
/// A list of qudits as an argument: made from one Qudit, from `{a, b}`, or from a range of Qudit or of
/// references to them. It refers to them and is made for the time of a call.
/// @tparam Element  Qudit, or const Qudit where the state stays as it is.
template <class Element> class BasicQuditList {
public:
    /// A single qudit.
    BasicQuditList(Element& qudit) : qudits_{qudit} {}

    /// Qudits in braces.
    BasicQuditList(std::initializer_list<std::reference_wrapper<Element>> qudits) : qudits_(qudits) {}

    /// A range of Qudit, or of references to them.
    template <std::ranges::forward_range Range>
    BasicQuditList(Range&& range) requires(!std::same_as<std::remove_cvref_t<Range>, BasicQuditList> &&
                                           std::convertible_to<std::ranges::range_reference_t<Range>, Element&>) {
        for (Element& qudit : range) qudits_.push_back(qudit);
    }

    [[nodiscard]] auto begin() const noexcept { return qudits_.begin(); }         ///< The first.
    [[nodiscard]] auto end() const noexcept { return qudits_.end(); }             ///< Behind the last.
    [[nodiscard]] std::size_t size() const noexcept { return qudits_.size(); }    ///< How many.
    [[nodiscard]] Element& operator[](std::size_t i) const { return qudits_[i]; } ///< One, not checked.

private:
    std::vector<std::reference_wrapper<Element>> qudits_;
};

/// Qudits whose state is read.
using QuditList = BasicQuditList<const Qudit>;

/// Qudits whose state is changed.
using Targets = BasicQuditList<Qudit>;

/// @cond internal
namespace detail {
/// Merges the joint states of listed qudits and of those that conditions name, in this order, and changes
/// nothing else: conditions that never hold name them all.
inline void merge(const QuditList& qudits, const Conditions& when = {}) {
    constexpr int never = -1;
    std::vector<Condition> all;
    for (const Qudit& qudit : qudits) all.push_back(qudit == never);
    for (std::size_t i = 0; i < when.size(); ++i) all.push_back({when.data()[i].property, never, 1});
    phase_rotate(all, 0.0F);
}

/// The dimensions of listed qudits.
inline std::vector<int> dimensions(const QuditList& qudits) {
    std::vector<int> list;
    for (const Qudit& qudit : qudits) list.push_back(qudit.dimension());
    return list;
}
} // namespace detail
/// @endcond
} // namespace vantel

#endif // C++20
#endif

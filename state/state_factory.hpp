/// From run-time numbers to the right build of State. Nobody else knows the builds.
#pragma once

#include "state/entries.hpp"
#include "state/exceptions.hpp"
#include "state/istate.hpp"
#include "state/limits.hpp"
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace vantel::qudit {
template <int MAX_DIMENSION, int MAX_NUM> class StateFactory {
public:
    /// The shape of a state: its largest dimension and its qudit count.
    struct BasisConfig {
        std::uint64_t dim;
        std::uint64_t num_qudits;
    };

    /// Builds a state from its entries, as State's constructor says.
    /// @throws StateSizeExceeded for more than MAX_STATE_ENTRIES entries, which is tested first; then what check_config
    /// raises; std::bad_alloc. Nothing is left behind.
    static std::unique_ptr<IState> make_unique_state(BasisConfig config,
                                                     const std::vector<BasisAmplitudeData>& entries);
    /// The same for packed entries.
    static std::unique_ptr<IState> make_unique_state(BasisConfig config, const EntrySource& entries);

    /// @throws BadDimension; std::invalid_argument for no qudit at all, and BadQuditNumber for too many: the two
    /// classes differ on purpose
    static void check_config(BasisConfig config) {
        if (config.dim < MIN_QUDIT_DIMENSION || config.dim > MAX_DIMENSION || config.num_qudits == 0 ||
            config.num_qudits > MAX_NUM) [[unlikely]]
            refuse(config);
    }

    /// The walk from build (D, N) to that of `config`, dimension first. The caller owns the result.
    template <int D, int N, class Entries> static IState* make(BasisConfig config, Entries entries);

    /// Takes qudit `index` out of the state and replaces the state behind the pointer. The last qudit moves into the
    /// freed slot; no amplitude changes. An index that names no slot takes out the last qudit.
    /// @return the index that was the last one, and the freed one
    /// @throws StateSizeExceeded, std::bad_alloc; the old state stands then
    static std::pair<int, int> free_qudit(std::unique_ptr<IState>& state, int index);

private:
    [[noreturn]] static void refuse(BasisConfig config);
};

extern template class StateFactory<MAX_QUDIT_DIMENSION, MAX_QUDIT_NUM>;

/// The tensor product of two states: a's qudits, then b's; entry i |B| + j is the product of a's entry i and b's entry
/// j, less what the constructor removes.
/// @throws StateSizeExceeded for more than MAX_STATE_ENTRIES products, BadQuditNumber, std::bad_alloc
template <int MAX_DIMENSION, int MAX_NUM> std::unique_ptr<IState> tensor_product(const IState& a, const IState& b);

extern template std::unique_ptr<IState> tensor_product<MAX_QUDIT_DIMENSION, MAX_QUDIT_NUM>(const IState& a,
                                                                                           const IState& b);
} // namespace vantel::qudit

/// The fractional exchange of two qudits without its list of shares.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "gates/exchange.hpp"
#include "gates/frame.hpp"
#include "state/basis_amplitude.hpp"
#include "state/entries_by_rank.hpp"
#include "state/product.hpp"

namespace vantel::qudit {

/// The two shares of an amplitude: cos(theta) of it stays, and i sin(theta) goes to the exchanged levels.
struct Shares {
    explicit Shares(float fraction) {
        constexpr double half_pi = 1.5707963267948966;
        const double theta = static_cast<double>(fraction) * half_pi;
        staying = Factor({std::cos(theta), 0.0});
        crossing = Factor({0.0, std::sin(theta)});
    }

    Factor staying;
    Factor crossing;
};

/// The gate together with the reduction that follows it: at most two shares meet in a label, what stays of
/// its own entry and what crosses from its partner, and both are found by rank.
class ExchangeSums {
public:
    /// @param controls_hold  kept by reference
    /// @return nothing where the list has no table by rank
    /// @throws std::bad_alloc
    static std::optional<ExchangeSums> of(std::span<const PackedAmplitude> entries, SlotLayout layout,
                                          int qudit_count, const ControlTest& controls_hold,
                                          const Exchange& exchange, const Shares& shares);

    /// How many entries write() needs room for.
    [[nodiscard]] std::size_t room() const noexcept { return room_; }

    /// Writes what the reduction leaves, in its told order. @return how many entries that is
    [[nodiscard]] std::size_t write(std::span<PackedAmplitude> list) noexcept;

private:
    using Copy = EntriesByRank::Copy;

    /// Set in the position of a label without an entry, which is then that of the partner's.
    static constexpr std::uint32_t of_partner = std::uint32_t{1} << 31;

    ExchangeSums(EntriesByRank&& table, const ControlTest& controls_hold, const Exchange& exchange,
                 const Shares& shares);

    [[nodiscard]] std::size_t count_kept() noexcept;
    void write_counted(std::span<PackedAmplitude> list) const noexcept;
    [[nodiscard]] bool write_undropped(std::span<PackedAmplitude> list) const noexcept;

    EntriesByRank table_;
    const ControlTest& controls_hold_;
    Exchange exchange_;
    Shares shares_;
    std::uint64_t
        partner_stride_; ///< how far off the partner is for each level that the two qudits differ by
    std::size_t room_;
    std::unique_ptr<std::uint32_t[]> holes_; ///< scratch of write()
};

} // namespace vantel::qudit

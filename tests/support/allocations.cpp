#include "tests/support/allocations.hpp"
#include <cstdlib>
#include <limits>
#include <new>

namespace {
long asked = 0;
long first_to_fail = std::numeric_limits<long>::max();
long last_to_fail = first_to_fail;
long live = 0;
} // namespace

void* operator new(std::size_t size) {
    if (const long number = asked++; number >= first_to_fail && number <= last_to_fail) throw std::bad_alloc();
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) throw std::bad_alloc();
    ++live;
    return block;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* block) noexcept {
    if (block != nullptr) --live;
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }

namespace vantel::testing {
void fail_allocations_after(long count, Failing how) {
    asked = 0;
    first_to_fail = count;
    last_to_fail = how == Failing::once ? count : std::numeric_limits<long>::max();
}

long stop_failing() {
    first_to_fail = std::numeric_limits<long>::max();
    last_to_fail = first_to_fail;
    return asked;
}

long live_allocations() { return live; }
} // namespace vantel::testing

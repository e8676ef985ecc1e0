#include "tests/support/allocations.hpp"

#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr long unlimited = std::numeric_limits<long>::max();
long allowed = unlimited;
bool failed = false;
long live = 0;

} // namespace

void* operator new(std::size_t size) {
    if (allowed != unlimited && allowed-- <= 0) {
        failed = true;
        throw std::bad_alloc();
    }
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr)
        throw std::bad_alloc();
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
    if (block != nullptr)
        --live;
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}

namespace vantel::testing {

void fail_allocations_after(long count) {
    failed = false;
    allowed = count;
}

bool stop_failing() {
    allowed = unlimited;
    return failed;
}

long live_allocations() {
    return live;
}

} // namespace vantel::testing

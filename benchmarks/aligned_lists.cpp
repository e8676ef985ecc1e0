/// Lists begin at a cache line, in every run and for every library. The allocator would put them at any multiple of 16
/// bytes, as cases before them have left the heap, and walks in wide vectors take a fifth longer across lines. The
/// longest are left to the allocator, since what counts there is when it gives memory back.
#include <cstdlib>
#include <new>

void* operator new(std::size_t size) {
    constexpr std::size_t line = 64;
    const bool is_list = size >= 4096 && size <= std::size_t{4} << 20;
    void* const memory = is_list ? std::aligned_alloc(line, (size + line - 1) / line * line) : std::malloc(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

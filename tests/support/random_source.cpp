#include "tests/support/random_source.hpp"
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <linux/fcntl.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

// The device is a pipe that holds copies of the word, so that what was taken shows in what is left. Each
// thread has its own.
namespace {
constexpr int copies = 8;
thread_local bool replaced = false;
thread_local vantel::testing::RandomSource::Fault fault_at_device{};
thread_local std::array<int, 2> ends{-1, -1};
thread_local std::array<int, copies> handed_out{};
thread_local int opened_so_far = 0;
} // namespace

// The standard library's random device calls this one, since the program's own symbols come first.
extern "C" __attribute__((visibility("default"))) int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = (flags & O_CREAT) != 0 ? va_arg(rest, unsigned) : 0U;
    va_end(rest);
    if (!replaced || std::strcmp(path, "/dev/urandom") != 0)
        return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
    if (fault_at_device == vantel::testing::RandomSource::Fault::cannot_open) {
        errno = ENOENT;
        return -1;
    }
    return handed_out.at(static_cast<std::size_t>(opened_so_far++)) = dup(ends[0]);
}

namespace vantel::testing {
RandomSource::RandomSource(std::uint32_t word, Fault fault) {
    std::array<std::uint32_t, copies> words{};
    words.fill(word);
    const std::size_t size = fault == Fault::none ? sizeof words : 0;
    if (pipe(ends.data()) != 0 || write(ends[1], words.data(), size) != static_cast<ssize_t>(size)) std::abort();
    close(ends[1]);
    opened_so_far = 0;
    fault_at_device = fault;
    replaced = true;
}

RandomSource::~RandomSource() {
    replaced = false;
    close(ends[0]);
}

int RandomSource::opened() const { return opened_so_far; }

int RandomSource::left_open() const {
    int open_still = 0;
    for (int i = 0; i < opened_so_far; ++i)
        open_still += syscall(SYS_fcntl, handed_out.at(static_cast<std::size_t>(i)), F_GETFD) >= 0 ? 1 : 0;
    return open_still;
}

int RandomSource::words_taken() const {
    int bytes = 0;
    ioctl(ends[0], FIONREAD, &bytes);
    return copies - bytes / static_cast<int>(sizeof(std::uint32_t));
}
} // namespace vantel::testing

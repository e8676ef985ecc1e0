/// Where every exception becomes a status, and what is refused before it could do harm.
#pragma once

#include "interface/vantel_guarded.h"
#include <exception>
#include <type_traits>

namespace vantel::guarded {
/// A failure that this library finds itself.
class Refusal : public std::exception {
public:
    Refusal(int status, const char* text) noexcept : status_(status), text_(text) {}
    [[nodiscard]] int status() const noexcept { return status_; }
    [[nodiscard]] const char* what() const noexcept override { return text_; }

private:
    int status_;
    const char* text_;
};

/// The status of the exception in flight, whose text becomes the thread's last failure.
int status_of_failure(const char* function) noexcept;

/// The thread's last failure.
const char* last_failure() noexcept;

/// Runs the body of an exported function. What the library and the standard library raise derives from
/// std::exception; a cancelled thread unwinds through here unhindered, as it must.
/// @return the body's status, vantel_ok for a body without one, or that of what it raised
template <class Body> int guard(const char* function, Body body) {
    try {
        if constexpr (std::is_void_v<decltype(body())>) {
            body();
            return vantel_ok;
        } else {
            return body();
        }
    } catch (const std::exception&) {
        return status_of_failure(function);
    }
}
} // namespace vantel::guarded

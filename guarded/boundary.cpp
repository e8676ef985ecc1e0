#include "guarded/boundary.hpp"
#include "state/exceptions.hpp"
#include <cstdio>
#include <new>
#include <stdexcept>

namespace vantel::guarded {
namespace {
// In the block that each thread has from its start: the C library allocates any other kind when a thread
// first asks for it, and ends the process where it cannot.
[[gnu::tls_model("initial-exec")]] thread_local char text_of_failure[160];

int note(const char* function, int status, const char* text) noexcept {
    std::snprintf(text_of_failure, sizeof text_of_failure, "%s: %s", function, text);
    return status;
}
} // namespace

const char* last_failure() noexcept { return text_of_failure; }

int status_of_failure(const char* function) noexcept {
    try {
        throw;
    } catch (const Refusal& failure) {
        return note(function, failure.status(), failure.what());
    } catch (const qudit::TargetControlOverlap& failure) {
        return note(function, vantel_target_control_overlap, failure.what());
    } catch (const qudit::DifferentDimensions& failure) {
        return note(function, vantel_different_dimensions, failure.what());
    } catch (const qudit::BadDimension& failure) {
        return note(function, vantel_bad_dimension, failure.what());
    } catch (const qudit::BadQuditNumber& failure) {
        return note(function, vantel_bad_qudit_number, failure.what());
    } catch (const qudit::StateSizeExceeded& failure) {
        return note(function, vantel_state_size_exceeded, failure.what());
    } catch (const std::bad_alloc&) {
        return note(function, vantel_guarded_out_of_memory, "memory is exhausted");
    } catch (const std::length_error& failure) {
        return note(function, vantel_guarded_bad_argument, failure.what());
    } catch (const std::exception& failure) {
        return note(function, vantel_guarded_other_failure, failure.what());
    }
}
} // namespace vantel::guarded

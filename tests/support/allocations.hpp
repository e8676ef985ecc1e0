#pragma once

namespace vantel::testing {
enum class Failing { once, from_then_on };

/// Lets `count` more allocations succeed and fails the next one, or every one after them.
void fail_allocations_after(long count, Failing how);
/// Back to normal. @return how many allocations were asked for since
long stop_failing();
long live_allocations();
} // namespace vantel::testing

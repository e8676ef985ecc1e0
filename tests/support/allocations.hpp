#pragma once

namespace vantel::testing {

/// Lets `count` more allocations succeed and fails every one after them.
void fail_allocations_after(long count);
/// Back to normal. @return whether one has failed
bool stop_failing();
long live_allocations();

} // namespace vantel::testing

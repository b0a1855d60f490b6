#pragma once

namespace zel::test {

// How often this program has taken memory from the heap. It counts in programs that are linked with
// allocation_count.cc, which replaces the global allocator.
// Thread: any thread.
long allocationCount();

}  // namespace zel::test

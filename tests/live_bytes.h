#pragma once

namespace zel::test {

// How many bytes of the heap this program holds, libraries that it is linked with included: what malloc() and its kin
// gave and was not given back. Unlike the process's size it does not depend on what the allocator keeps for later. It
// counts in programs that are linked with live_bytes.cc, which stands between them and the C library's allocator.
// Thread: any thread.
long liveBytes();

}  // namespace zel::test

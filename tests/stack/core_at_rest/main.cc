// A program with every object of the core in it: nothing of it runs, takes memory or starts a thread before the first
// use. It does without the test library, which takes memory before main() itself.

#include <ZELTarkaSDK/ZELData.h>
#include <malloc.h>

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <thread>
#include <vector>

#include "tests/allocation_count.h"

namespace {

struct State {
  long threads = 0;  // an emulator may have one of its own
  long allocations = 0;
  std::size_t heapBytes = 0;
};

State atFirst;
int failures = 0;

// In this order: counting threads takes memory, and gives it back.
State stateNow() {
  namespace fs = std::filesystem;
  State now;
  now.threads = std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator());
  now.allocations = zel::test::allocationCount();
  now.heapBytes = mallinfo2().uordblks;
  return now;
}

// Before every static object of this program, and after those of the shared libraries.
[[gnu::constructor(101)]] void beginCounting() {
  stateNow();  // what the first count alone takes for good
  atFirst = stateNow();
}

void expectEqual(const char* what, long found, long expected) {
  if (found == expected) return;
  std::printf("%s: %ld, expected %ld\n", what, found, expected);
  ++failures;
}

}  // namespace

int main() {
  const long allocations = zel::test::allocationCount();
  const State state = stateNow();
  expectEqual("allocations before main()", allocations - atFirst.allocations, 0);
  expectEqual("bytes taken before main()", static_cast<long>(state.heapBytes - atFirst.heapBytes), 0);
  expectEqual("threads started before main()", state.threads - atFirst.threads, 0);

  // What is counted above is seen.
  const long before = zel::test::allocationCount();
  const ZELData data(std::vector<std::uint8_t>(100'000));
  if (zel::test::allocationCount() == before) expectEqual("allocations of a ZELData", 0, 1);
  const std::jthread other([](const std::stop_token& stop) {
    while (!stop.stop_requested()) std::this_thread::yield();
  });
  const State later = stateNow();
  if (later.heapBytes < state.heapBytes + data.size()) expectEqual("bytes of a ZELData", 0, 100'000);
  expectEqual("threads with one more", later.threads - state.threads, 1);
  return failures == 0 ? 0 : 1;
}

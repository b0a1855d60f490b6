#include "link/message_registry.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace zel::test {
namespace {

// Records come and go while others are looked up, which makes the table move its memory.
TEST(RegistryThread, FindsARecordWhileOthersAreRegisteredAndRemoved) {
  constexpr int kOthers = 2000;
  Registry<int> registry;
  registry.put(-1, 7);
  std::atomic<bool> done = false;
  std::thread writer([&] {
    for (int round = 0; round < 4; ++round) {
      for (int key = 0; key < kOthers; ++key) registry.put(key, key);
      for (int key = 0; key < kOthers; ++key) registry.remove(key);
    }
    done.store(true);
  });
  int found = 0, wrong = 0;
  while (!done.load() || found == 0) {
    const auto record = registry.find(-1);
    ++(record != nullptr && *record == 7 ? found : wrong);
  }
  writer.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace zel::test

#include "tests/platform/harness.h"

namespace zel::test {

std::vector<Adapter> adapters() {
  std::vector<Adapter> all;
  for (const std::uint64_t seed : {1U, 2U, 3U, 4U, 5U}) {
    all.push_back({"SimulatedSeed" + std::to_string(seed), [seed] { return makeSimulatedHarness(seed); }});
  }
#if defined(ZEL_TEST_LINUX)
  all.push_back({"Linux", [] { return makeLinuxHarness(); }});
#endif
  return all;
}

}  // namespace zel::test

#include "tests/platform/harness.h"

namespace zel::test {

namespace {

const std::map<std::string, std::string> kSimulatedFaults = {
    {"DoesNotNestRegistrations", "registrations are counted"},
    {"GivesAGlobalQueueTaskTheMainRunLoop", "the global queue has a run loop of its own"},
    {"CallsNoDelegateThatHasGone", "unread bytes without a delegate are reported for ever"},
    {"CallsNoDelegateThatWasTakenAway", "unread bytes without a delegate are reported for ever"},
    {"HasNoBytesAfterAnError", "a failed input goes on having bytes"},
    {"ReportsNothingAfterLeavingItsRunLoop", "events already under way still arrive"},
    {"HasEndedWhenItsHandleIsDestroyed", "a thread that is destroyed at once ends without having begun"},
};

}  // namespace

std::vector<Adapter> adapters() {
  std::vector<Adapter> all;
  for (const std::uint64_t seed : {1U, 2U, 3U, 4U, 5U}) {
    all.push_back(
        {"SimulatedSeed" + std::to_string(seed), [seed] { return makeSimulatedHarness(seed); }, kSimulatedFaults});
  }
#if defined(ZEL_TEST_LINUX)
  all.push_back(
      {"Linux", [] { return makeLinuxHarness(); }, {{"DoesNotNestRegistrations", "registrations are counted"}}});
#endif
  return all;
}

}  // namespace zel::test

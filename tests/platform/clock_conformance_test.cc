#include <semaphore>

#include "tests/platform/harness.h"

namespace zel::test {
namespace {

using ClockConformance = Conformance;

TEST_P(ClockConformance, CountsFromTheBeginningOf2001) {
  const double begin2023 = 694'224'000.0;  // 22 years: 8,035 days
  EXPECT_GT(ports.clock.absoluteTime(), begin2023);
  EXPECT_LT(ports.clock.absoluteTime(), 2 * begin2023);
}

TEST_P(ClockConformance, SleepsForAtLeastTheTimeAsked) {
  const double before = ports.clock.absoluteTime();
  ports.clock.sleepFor(0.02);
  EXPECT_GE(ports.clock.absoluteTime() - before, 0.0199);
}

TEST_P(ClockConformance, ReturnsAtOnceFromSleepingForNothing) {
  const double before = ports.clock.absoluteTime();
  ports.clock.sleepFor(0);
  ports.clock.sleepFor(-3600);
  EXPECT_LT(ports.clock.absoluteTime() - before, 60);
}

TEST_P(ClockConformance, TakesAFreeSemaphoreAtOnce) {
  std::binary_semaphore semaphore(1);
  ports.clock.acquire(semaphore);
  EXPECT_FALSE(semaphore.try_acquire());
}

TEST_P(ClockConformance, WaitsForASemaphoreWhileItsHolderGoesOn) {
  std::binary_semaphore semaphore(0);
  const double before = ports.clock.absoluteTime();
  ports.queues.globalQueue().post([&] {
    ports.clock.sleepFor(0.02);
    semaphore.release();
  });
  ports.clock.acquire(semaphore);
  EXPECT_GE(ports.clock.absoluteTime() - before, 0.0199);
  EXPECT_FALSE(semaphore.try_acquire());
}

TEST_P(ClockConformance, GivesUpASemaphoreThatNobodyReleasesInTime) {
  std::binary_semaphore semaphore(0);
  const double before = ports.clock.absoluteTime();
  EXPECT_FALSE(ports.clock.acquireFor(semaphore, 0.02));
  EXPECT_GE(ports.clock.absoluteTime() - before, 0.0199);
  EXPECT_FALSE(ports.clock.acquireFor(semaphore, 0));
}

TEST_P(ClockConformance, TakesASemaphoreAsSoonAsItIsReleased) {
  std::binary_semaphore semaphore(0);
  const double before = ports.clock.absoluteTime();
  ports.queues.globalQueue().post([&] {
    ports.clock.sleepFor(0.02);
    semaphore.release();
  });
  EXPECT_TRUE(ports.clock.acquireFor(semaphore, 3600));
  EXPECT_GE(ports.clock.absoluteTime() - before, 0.0199);
  EXPECT_LT(ports.clock.absoluteTime() - before, 60);
  EXPECT_FALSE(semaphore.try_acquire());
}

ZEL_CONFORMANCE_SUITE(ClockConformance);

}  // namespace
}  // namespace zel::test

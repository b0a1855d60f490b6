#include "outputs/retry_policy.h"

#include <gtest/gtest.h>

namespace zel {
namespace {

constexpr double kMiddle = 0.5;  // no jitter

TEST(RetryPolicyTest, WaitsTwoSecondsAndHalfAsMuchAgainEachTime) {
  RetryPolicy policy;
  EXPECT_DOUBLE_EQ(policy.next(0, kMiddle).value(), 2);
  EXPECT_DOUBLE_EQ(policy.next(0, kMiddle).value(), 3);
  EXPECT_DOUBLE_EQ(policy.next(0, kMiddle).value(), 4.5);
  EXPECT_DOUBLE_EQ(policy.next(0, kMiddle).value(), 6.75);
  EXPECT_EQ(policy.attempt(), 4);
}

TEST(RetryPolicyTest, JittersByAFifth) {
  EXPECT_DOUBLE_EQ(RetryPolicy().next(0, 0).value(), 1.6);
  EXPECT_DOUBLE_EQ(RetryPolicy().next(0, 1).value(), 2.4);
}

TEST(RetryPolicyTest, GivesUpAfterTwenty) {
  RetryPolicy policy;
  for (int i = 0; i < 20; ++i) ASSERT_TRUE(policy.next(0, kMiddle)) << i;
  EXPECT_FALSE(policy.next(0, kMiddle));
}

TEST(RetryPolicyTest, AConnectionThatHeldBeginsTheCountAnew) {
  RetryPolicy policy;
  for (int i = 0; i < 20; ++i) policy.next(0, kMiddle);
  EXPECT_FALSE(policy.next(29.9, kMiddle));
  EXPECT_DOUBLE_EQ(policy.next(30, kMiddle).value(), 2);
}

}  // namespace
}  // namespace zel

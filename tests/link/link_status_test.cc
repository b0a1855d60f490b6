#include <ZELTarkaSDK/LinkStatus.h>

#include <gtest/gtest.h>

namespace zel::test {
namespace {

TEST(LinkStatusTest, BearsTheNumbersThatObserversAreTold) {
  EXPECT_EQ(LinkStatus{0}, LinkStatus::closed);
  EXPECT_EQ(LinkStatus{1}, LinkStatus::open);
  EXPECT_EQ(LinkStatus{2}, LinkStatus::flowing);
  EXPECT_EQ(LinkStatus{3}, LinkStatus::silent);
}

TEST(LinkStatusTest, ReadsAsWords) {
  EXPECT_EQ(toString(LinkStatus::closed), "no connection");
  EXPECT_EQ(toString(LinkStatus::open), "session open");
  EXPECT_EQ(toString(LinkStatus::flowing), "frames arriving");
  EXPECT_EQ(toString(LinkStatus::silent), "frames stopped");
  EXPECT_EQ(toString(LinkStatus{4}), "unknown");
}

}  // namespace
}  // namespace zel::test

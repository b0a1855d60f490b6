#include "gateway/cameras/notices.h"

#include <gmock/gmock.h>

namespace zel::gateway {
namespace {

using testing::ElementsAre;

TEST(NoticesTest, GoToEverybodyWhoTakesThem) {
  Notices notices;
  std::vector<int> first, second;
  const auto one = notices.take([&](const Notice& notice) { first.push_back(notice.value["n"]); });
  auto other = notices.take([&](const Notice& notice) { second.push_back(notice.value["n"]); });
  notices.post({Notice::Kind::camera, {{"n", 1}}});
  other.reset();
  notices.post({Notice::Kind::camera, {{"n", 2}}});
  EXPECT_THAT(first, ElementsAre(1, 2));
  EXPECT_THAT(second, ElementsAre(1));
}

TEST(NoticesTest, KnowWhetherAnybodyTakesThem) {
  Notices notices;
  EXPECT_FALSE(notices.isTaken());
  {
    const auto token = notices.take([](const Notice&) {});
    EXPECT_TRUE(notices.isTaken());
  }
  EXPECT_FALSE(notices.isTaken());
}

TEST(NoticesTest, MayEndBeforeThoseWhoTakeThem) {
  std::shared_ptr<void> token;
  {
    Notices notices;
    token = notices.take([](const Notice&) {});
  }
  token.reset();
}

}  // namespace
}  // namespace zel::gateway

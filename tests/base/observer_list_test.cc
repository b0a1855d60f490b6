#include "base/observer_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace zel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ObserverListTest, CallsThoseThatWatchInTheOrderInWhichTheyCame) {
  ObserverList<int> list;
  std::vector<int> called;
  const auto first = list.add([&](int value) { called.push_back(10 + value); });
  const auto second = list.add([&](int value) { called.push_back(20 + value); });
  list.notify(3);
  EXPECT_THAT(called, ElementsAre(13, 23));
}

TEST(ObserverListTest, CallsNobodyThatHasGone) {
  ObserverList<> list;
  std::vector<int> called;
  auto first = list.add([&] { called.push_back(1); });
  const auto second = list.add([&] { called.push_back(2); });
  first.reset();
  list.notify();
  EXPECT_THAT(called, ElementsAre(2));
}

TEST(ObserverListTest, CallsNobodyWhoseTokenHasAnotherValueNow) {
  ObserverList<> list;
  std::vector<int> called;
  auto observation = list.add([&] { called.push_back(1); });
  observation = Observation();
  list.notify();
  EXPECT_THAT(called, IsEmpty());
}

TEST(ObserverListTest, LetsGoOfThoseThatHaveGoneWhenTheNextOneComes) {
  ObserverList<> list;
  const auto held = std::make_shared<int>(0);
  list.add([held] {}).reset();
  const auto next = list.add([] {});
  EXPECT_EQ(held.use_count(), 1);
}

TEST(ObserverListTest, KeepsThoseThatWatchWhenTheNextOneComes) {
  ObserverList<> list;
  std::vector<int> called;
  const auto first = list.add([&] { called.push_back(1); });
  const auto second = list.add([&] { called.push_back(2); });
  const auto third = list.add([&] { called.push_back(3); });
  list.notify();
  EXPECT_THAT(called, ElementsAre(1, 2, 3));
}

}  // namespace
}  // namespace zel

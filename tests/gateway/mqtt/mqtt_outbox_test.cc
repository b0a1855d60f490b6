#include "gateway/mqtt/mqtt_outbox.h"

#include <gmock/gmock.h>

#include <vector>

namespace zel::gateway {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> takeAll(MqttOutbox& outbox) {
  std::vector<std::string> all;
  while (const auto next = outbox.take()) all.push_back(next->topic + "=" + next->content);
  return all;
}

TEST(MqttOutboxTest, OfARetainedTopicTheNewestCounts) {
  MqttOutbox outbox;
  outbox.put({"a", "1", true});
  outbox.put({"b", "1", true});
  outbox.put({"a", "2", true});
  EXPECT_THAT(takeAll(outbox), ElementsAre("a=2", "b=1"));
  EXPECT_TRUE(outbox.isEmpty());
}

TEST(MqttOutboxTest, WhatDidNotChangeIsNotSentAgainButToAnotherBroker) {
  MqttOutbox outbox;
  outbox.put({"a", "1", true});
  takeAll(outbox);
  outbox.put({"a", "1", true});
  EXPECT_TRUE(outbox.isEmpty());
  outbox.put({"answer", "x", false});
  outbox.restart();
  EXPECT_THAT(takeAll(outbox), ElementsAre("a=1"));
  EXPECT_EQ(outbox.dropped(), 1U);
}

TEST(MqttOutboxTest, OfOthersTheOldestGoFirst) {
  MqttOutbox outbox;
  for (std::size_t i = 0; i <= MqttOutbox::kMostOthers; ++i) outbox.put({"answer", std::to_string(i), false});
  EXPECT_EQ(outbox.dropped(), 1U);
  EXPECT_EQ(outbox.take()->content, "1");
}

TEST(MqttOutboxTest, TopicsAndSizesAreBounded) {
  MqttOutbox outbox;
  EXPECT_TRUE(outbox.put({"large", std::string(MqttOutbox::kLargest, 'x'), false}));
  EXPECT_FALSE(outbox.put({"large", std::string(MqttOutbox::kLargest + 1, 'x'), false}));
  for (std::size_t i = 0; i < MqttOutbox::kMostTopics; ++i)
    EXPECT_TRUE(outbox.put({"topic" + std::to_string(i), "1", true}));
  EXPECT_FALSE(outbox.put({"another", "1", true}));
  EXPECT_TRUE(outbox.put({"topic0", "2", true}));
  EXPECT_EQ(outbox.dropped(), 2U);
}

}  // namespace
}  // namespace zel::gateway

#include "gateway/mqtt/mqtt_topics.h"

#include <gtest/gtest.h>

namespace zel::gateway {
namespace {

TEST(MqttTopicsTest, NoNameMakesALevelOrAWildcard) {
  EXPECT_EQ(topicPart("E1A-0001_x.y"), "E1A-0001_x.y");
  EXPECT_EQ(topicPart("a/b+c#d e%\xC3\xA4"), "a%2Fb%2Bc%23d%20e%25%C3%A4");
  EXPECT_EQ(cameraTopic("a/#", "status"), "zel/a%2F%23/status");
  EXPECT_EQ(gatewayTopic("attic"), "zel/gateways/attic/availability");
}

TEST(MqttTopicsTest, ACommandIsOneLevelBehindItsCamera) {
  EXPECT_EQ(commandIn("zel/E1/command/photo", "E1"), "photo");
  EXPECT_FALSE(commandIn("zel/E1/command/", "E1"));
  EXPECT_FALSE(commandIn("zel/E1/command/a/b", "E1"));
  EXPECT_FALSE(commandIn("zel/E2/command/photo", "E1"));
  EXPECT_FALSE(commandIn("zel/E1/answer/photo", "E1"));
}

}  // namespace
}  // namespace zel::gateway

#include "link/message_registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "protocol/frame.h"

namespace zel::test {
namespace {

using testing::ElementsAre;

TEST(RegistryTest, FindsWhatWasPutLast) {
  Registry<int> registry;
  registry.put(5, 1);
  registry.put(5, 2);
  EXPECT_EQ(*registry.find(5), 2);
}

TEST(RegistryTest, ComparesTheLow32BitsOfAKey) {
  Registry<int> registry;
  registry.put(0x1'0000'0007, 1);
  EXPECT_EQ(*registry.find(7), 1);
  EXPECT_EQ(*registry.find(0x2'0000'0007), 1);
  EXPECT_EQ(registry.find(8), nullptr);
}

TEST(RegistryTest, LeavesAFoundRecordUsableAfterItsRemoval) {
  Registry<int> registry;
  registry.put(1, 11);
  const auto record = registry.find(1);
  registry.remove(1);
  EXPECT_EQ(*record, 11);
  EXPECT_EQ(registry.find(1), nullptr);
}

TEST(PackedFrameTest, WritesOnlyTheLow16BitsOfTheCode) {
  const CameraMsgPacket packet(0x7FFF4001, nullptr);
  EXPECT_THAT(packedFrame(packet, {}).bytes(), ElementsAre(8, 0, 0, 0, 4, 0, 0x01, 0x40));
}

TEST(PackedFrameTest, CountsTheBodyInTheLength) {
  const CameraMsgPacket packet(0x401A, [](auto, const auto&, void*) { return std::optional(ZELData(Bytes{2})); });
  EXPECT_THAT(packedFrame(packet, {}).bytes(), ElementsAre(9, 0, 0, 0,  // length, its own 6 header bytes included
                                                           4, 0,        // data type: message
                                                           0x1A, 0x40,  // code
                                                           2));         // body
}

}  // namespace
}  // namespace zel::test

#include "tools/reference/protocol_reference.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

namespace zel::test {
namespace {

using testing::HasSubstr;

TEST(ProtocolReferenceTest, IsWhatTheDocumentsHold) {
  std::ifstream file(std::string(SOURCE_FOLDER) + "/docs/protocol.md");
  const std::string kept{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  EXPECT_TRUE(kept == protocolReference()) << "docs/protocol.md is stale; ./run docs makes it anew";
}

TEST(ProtocolReferenceTest, HasARowForAFamilyAndForItsReply) {
  EXPECT_THAT(protocolReference(),
              HasSubstr("| `registerMsgReqSetVideoExtraInfo` | 66 | 0x4034 | `nsString` UTF-8 name, "
                        "zero-filled (64), `NSData` bytes to the end | 0xC034 | flag |\n"));
}

TEST(ProtocolReferenceTest, TellsAFamilyWithoutAReplyAndOneThatIsNeverRegistered) {
  EXPECT_THAT(protocolReference(),
              HasSubstr("| `registerMsgReqUpdateGps` | 27 | 0x400A | `gpsData` GPS record (24) | - "
                        "| none |\n"));
  EXPECT_THAT(protocolReference(), HasSubstr("| `registerMsgReqUpdateOrientation`, never | 50 |"));
}

TEST(ProtocolReferenceTest, TellsThePhotosNameFromTheReplysByItsCharset) {
  EXPECT_THAT(protocolReference(), HasSubstr("| 3 | photo: ASCII name of at most 63 bytes, zero-filled (64), then"));
  EXPECT_THAT(protocolReference(), HasSubstr("`fileName` UTF-8 name"));
}

TEST(ProtocolReferenceTest, HasARowForAnEvent) {
  EXPECT_THAT(protocolReference(),
              HasSubstr("| `registerMsgCameraReqBatteryUpdate` | 2 | 0x6003 | `intValue` u8, `intValue2` u8 |\n"));
}

TEST(ProtocolReferenceTest, HasEachRecordsOffsets) {
  EXPECT_THAT(protocolReference(), HasSubstr("### ZELVideoMnd, 192 bytes\n"));
  EXPECT_THAT(protocolReference(), HasSubstr("| 144 | `orientation` | ZELOrientationData |\n"));
}

TEST(ProtocolReferenceTest, HasEveryResolution) {
  EXPECT_THAT(protocolReference(), HasSubstr("| 15 | 3040 x 1520 | 30 |\n\n## Records"));
}

}  // namespace
}  // namespace zel::test

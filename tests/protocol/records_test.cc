#include "protocol/records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zel::test {
namespace {

using testing::ElementsAre;

// A record's members as text: offset, name, type, how many, bytes.
std::vector<std::string> membersOf(const RecordLayout& layout) {
  std::vector<std::string> members;
  for (const RecordMember& member : layout) {
    members.push_back(std::to_string(member.offset) + " " + std::string(member.name) + " " + std::string(member.type) +
                      " x " + std::to_string(member.count) + ", " + std::to_string(member.size));
  }
  return members;
}

TEST(RecordsTest, TellTheirMembersOneAfterAnother) {
  EXPECT_THAT(membersOf(kLayout<ZELGpsData>),
              ElementsAre("0 latitude f64 x 1, 8", "8 longitude f64 x 1, 8", "16 altitude f64 x 1, 8"));
  EXPECT_THAT(membersOf(kLayout<timelapse_info>), ElementsAre("0 value1 u32 x 1, 4", "4 value2 u8 x 1, 1",
                                                              "5 value3 u8 x 1, 1", "6 exposure ZELIPMEParam x 1, 2"));
}

TEST(RecordsTest, TellRowsOfNumbersAndOfRecords) {
  EXPECT_THAT(membersOf(kLayout<calib_wb_gain>),
              ElementsAre("0 value1 u8 x 1, 1", "1 value2 u8 x 1, 1", "2 gains s16 x 4, 8"));
  EXPECT_THAT(membersOf(kLayout<ZELMediaOffset>),
              ElementsAre("0 valueA u16 x 1, 2", "2 valueB u16 x 1, 2", "4 valueC u32 x 1, 4", "8 lensCount u8 x 1, 1",
                          "9 reserved bytes x 7, 7", "16 lenses ZELLensOffset x 2, 64"));
}

TEST(RecordsTest, BearTheirNamesAndSizes) {
  std::vector<std::string> records;
  for (const RecordLayout* record : kRecords)
    records.push_back(std::string(record->name()) + " " + std::to_string(record->size()));
  EXPECT_THAT(records, ElementsAre("ZELGpsData 24", "ZELGyroData 24", "ZELOrientationData 16", "aeb_info 10",
                                   "ZELIPMEParam 2", "ZELIPAEMMWeight 96", "timelapse_info 8", "calib_wb_gain 10",
                                   "calib_vignette_luma 6", "calib_vignette_gain 14", "ZELLensOffset 32",
                                   "ZELMediaOffset 80", "ZELOriginOffset 28", "ZELVideoMnd 192"));
}

}  // namespace
}  // namespace zel::test

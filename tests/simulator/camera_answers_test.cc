#include "simulator/camera_answers.h"

#include "tests/simulator/camera_test.h"

namespace zel::simulator {
namespace {

using testing::AllOf;
using testing::Each;
using testing::SizeIs;

const Bytes kNone = {};

class CameraAnswersTest : public CameraTest {};

// A setting with the request that reads it, its size, and what the camera comes with.
struct ReadableSetting {
  std::uint16_t set, get;
  Bytes first;
};

class ReadableSettingTest : public CameraTest, public testing::WithParamInterface<ReadableSetting> {};

TEST_P(ReadableSettingTest, IsReadAsItWasSet) {
  const auto& [set, get, first] = GetParam();
  EXPECT_EQ(ask(get), joined(kDone, first));
  EXPECT_EQ(ask(set, counting(first.size())), kDone);
  EXPECT_EQ(ask(get), joined(kDone, counting(first.size())));
}

TEST_P(ReadableSettingTest, RefusesBodiesOfAnotherLengthAndKeepsItsValue) {
  const auto& [set, get, first] = GetParam();
  EXPECT_EQ(ask(set, counting(first.size() - 1)), kRefused);
  EXPECT_EQ(ask(set, counting(first.size() + 1)), kRefused);
  EXPECT_EQ(ask(get, {0}), kRefused);
  EXPECT_EQ(ask(get), joined(kDone, first));
}

INSTANTIATE_TEST_SUITE_P(Settings, ReadableSettingTest,
                         testing::Values(ReadableSetting{0x0013, 0x4048, {0x00, 0xF4, 0x01, 0x00}},  // audio: 128000
                                         ReadableSetting{0x4023, 0x4024, {0}},                       // flicker
                                         ReadableSetting{0x4029, 0x402A, {0, 0, 0, 0, 0, 0, 0, 0}},  // active time
                                         ReadableSetting{0x402B, 0x402C, {0}},                       // recording limit
                                         ReadableSetting{0x402F, 0x4030, {0}},                       // self timer
                                         ReadableSetting{0x4031, 0x4032, {0, 0}},                    // GPS timeout
                                         ReadableSetting{0x4036, 0x4037, Bytes(10)},                 // white balance
                                         ReadableSetting{0x4038, 0x4039, Bytes(6)},                  // vignette luma
                                         ReadableSetting{0x403D, 0x403E, {0}},                       // triple press
                                         ReadableSetting{0x403F, 0x4040, Bytes(8)},                  // timelapse
                                         ReadableSetting{0x4044, 0x4045, Bytes(14)},                 // vignette gain
                                         ReadableSetting{0x4046, 0x4047, {0, 0}}));                  // timelapse bias

struct PlainSetting {
  std::uint16_t set;
  std::size_t size;
};

class PlainSettingTest : public CameraTest, public testing::WithParamInterface<PlainSetting> {};

TEST_P(PlainSettingTest, IsTakenAtItsSizeOnly) {
  const auto [set, size] = GetParam();
  EXPECT_EQ(ask(set, counting(size)), kDone);
  EXPECT_EQ(ask(set, counting(size - 1)), kRefused);
  EXPECT_EQ(ask(set, counting(size + 1)), kRefused);
}

INSTANTIATE_TEST_SUITE_P(Settings, PlainSettingTest,
                         testing::Values(PlainSetting{0x400C, 1}, PlainSetting{0x400D, 1}, PlainSetting{0x4014, 1},
                                         PlainSetting{0x4015, 2}, PlainSetting{0x4016, 1}, PlainSetting{0x4017, 96},
                                         PlainSetting{0x4018, 2}, PlainSetting{0x4019, 3}, PlainSetting{0x401A, 1},
                                         PlainSetting{0x401B, 2}, PlainSetting{0x401C, 2}, PlainSetting{0x401D, 2},
                                         PlainSetting{0x401E, 1}, PlainSetting{0x401F, 1}, PlainSetting{0x4020, 1}));

TEST_F(CameraAnswersTest, TheExposureIndexFollowsTheBias) {
  EXPECT_EQ(ask(0x4022), (Bytes{1, 12, 0}));
  EXPECT_EQ(ask(0x4015, {0xFD, 0xFF}), kDone);  // -3
  EXPECT_EQ(ask(0x4022), (Bytes{1, 9, 0}));
  EXPECT_EQ(ask(0x4015, {12, 0}), kDone);
  EXPECT_EQ(ask(0x4022), (Bytes{1, 24, 0}));
  EXPECT_EQ(ask(0x4015, {0x00, 0x80}), kDone);  // -32768, as far as it goes
  EXPECT_EQ(ask(0x4022), (Bytes{1, 0, 0}));
}

TEST_F(CameraAnswersTest, TellsTheBattery) { EXPECT_EQ(ask(0x4001), (Bytes{1, 100})); }

TEST_F(CameraAnswersTest, RefusesTheBatteryWithABodyByAnEmptyReply) { EXPECT_EQ(ask(0x4001, {0}), kNone); }

TEST_F(CameraAnswersTest, TakesKnownPhotoSizesAndAnswersTheOneInForce) {
  EXPECT_EQ(ask(0x4002, {2}), Bytes{2});
  EXPECT_EQ(ask(0x4002, {3}), Bytes{2});
  EXPECT_EQ(ask(0x4002, {255}), Bytes{2});
  EXPECT_EQ(ask(0x4002, {0}), Bytes{0});
  EXPECT_EQ(ask(0x4002), kNone);
}

TEST_F(CameraAnswersTest, TakesKnownResolutionsAndAnswersTheOneInForce) {
  EXPECT_EQ(ask(0x000A, {15}), Bytes{15});
  EXPECT_EQ(ask(0x000A, {16}), Bytes{15});
  EXPECT_EQ(ask(0x000A, {1, 2}), kNone);
}

TEST_F(CameraAnswersTest, TakesABitrateThatIsOne) {
  EXPECT_EQ(ask(0x000C, {3, 80}), (Bytes{1, 80}));
  EXPECT_EQ(ask(0x000C, {3, 0}), (Bytes{0, 80}));
  EXPECT_EQ(ask(0x000C, {3}), kRefused);
}

TEST_F(CameraAnswersTest, TellsTheCardsStateSizeAndRoom) {
  CameraStart start;
  start.cardSize = 0x0A00000;
  makeCamera(start);
  EXPECT_EQ(ask(0x400E), (Bytes{0, 0, 0, 0xA0, 0, 0, 0, 0, 0, 0, 0, 0xA0, 0, 0, 0, 0, 0}));
}

TEST_F(CameraAnswersTest, CountsShotsByThePhotoSize) {
  EXPECT_EQ(ask(0x4043), (Bytes{1, 0x00, 0x08, 0, 0}));  // 8 GiB in pieces of 4 MiB
  ask(0x4002, {1});
  EXPECT_EQ(ask(0x4043), (Bytes{1, 0x00, 0x20, 0, 0}));
  ask(0x4002, {2});
  EXPECT_EQ(ask(0x4043), (Bytes{1, 0x00, 0x80, 0, 0}));
}

TEST_F(CameraAnswersTest, CountsTheSecondsOfVideoByTheBitrate) {
  EXPECT_EQ(ask(0x4042), (Bytes{1, 0xB5, 0x06, 0, 0}));  // 1717 at 5 000 000 bytes each
  ask(0x000C, {0, 80});
  EXPECT_EQ(ask(0x4042), (Bytes{1, 0x5A, 0x03, 0, 0}));  // 858
}

TEST_F(CameraAnswersTest, ComesWithTheFactorysOffset) {
  const Bytes answer = ask(0x400F, {0, 3});
  ASSERT_THAT(answer, SizeIs(81));
  EXPECT_EQ(Bytes(answer.begin(), answer.begin() + 21),
            (Bytes{1, 0xE0, 0x0B, 0xF0, 0x05, 7, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0xB0, 0x71, 0x0B, 0}));
}

TEST_F(CameraAnswersTest, KeepsAnOffsetForEachType) {
  Bytes record = counting(80);
  record[8] = 2;  // lenses
  const Bytes factory = ask(0x400F, {0, 3});
  EXPECT_EQ(ask(0x4010, joined({0, 4}, record)), kDone);
  EXPECT_EQ(ask(0x400F, {0, 4}), joined(kDone, record));
  EXPECT_EQ(ask(0x400F, {1, 4}), factory);
  EXPECT_EQ(ask(0x400F, {0, 3}), factory);
}

TEST_F(CameraAnswersTest, RefusesAnOffsetOfMoreLensesThanItHoldsOrOfAnotherLength) {
  Bytes record(80);
  record[8] = 3;
  EXPECT_EQ(ask(0x4010, joined({0, 4}, record)), kRefused);
  EXPECT_EQ(ask(0x4010, Bytes(81)), kRefused);
  EXPECT_EQ(ask(0x4010, Bytes(83)), kRefused);
  EXPECT_EQ(ask(0x400F, {0}), kRefused);
}

TEST_F(CameraAnswersTest, KeepsAnOriginOffsetForEachType) {
  const Bytes factory = {1,                                                                // flag
                         0xB0, 0x71, 0x0B, 0,   0xC0, 0x98, 0x0B, 0, 0xC0, 0x98, 0x0B, 0,  // 750, 760, 760
                         0xB0, 0x71, 0x0B, 0,   0x40, 0xCA, 0x22, 0, 0xC0, 0x98, 0x0B, 0,  // 750, 2280, 760
                         0xE0, 0x0B, 0xF0, 0x05};                                          // 3040 x 1520
  EXPECT_EQ(ask(0x4026, {0, 9}), factory);
  EXPECT_EQ(ask(0x4027, joined({0, 8}, counting(28))), kDone);
  EXPECT_EQ(ask(0x4026, {0, 8}), joined(kDone, counting(28)));
  EXPECT_EQ(ask(0x4026, {0, 9}), factory);
  EXPECT_EQ(ask(0x4027, Bytes(29)), kRefused);
  EXPECT_EQ(ask(0x4027, Bytes(31)), kRefused);
}

TEST_F(CameraAnswersTest, KeepsASerialNumber) {
  EXPECT_EQ(ask(0x4012), joined(kDone, ofText("E1A0001")));
  EXPECT_EQ(ask(0x4013, ofText("NEW-7")), kDone);
  EXPECT_EQ(ask(0x4012), joined(kDone, ofText("NEW-7")));
}

TEST_F(CameraAnswersTest, RefusesASerialNumberThatIsNone) {
  EXPECT_EQ(ask(0x4013), kRefused);
  EXPECT_EQ(ask(0x4013, {'a', 0}), kRefused);
  EXPECT_EQ(ask(0x4013, {'a', ' '}), kRefused);
  EXPECT_EQ(ask(0x4013, {0xC3, 0xA4}), kRefused);
  EXPECT_EQ(ask(0x4013, Bytes(65, 'x')), kRefused);
  EXPECT_EQ(ask(0x4013, Bytes(64, 'x')), kDone);
}

TEST_F(CameraAnswersTest, HasAUuidThatStaysWithTheCamera) {
  EXPECT_EQ(ask(0x4025), joined(kDone, ofText("5a454c00-0000-4000-8000-08c0e50c9659")));
  ask(0x4013, ofText("OTHER"));
  EXPECT_EQ(ask(0x4025), joined(kDone, ofText("5a454c00-0000-4000-8000-08c0e50c9659")));
}

TEST_F(CameraAnswersTest, KnowsNothingOfFilesThatItDidNotMake) {
  EXPECT_EQ(ask(0x4028, ofText("none.mp4")), kRefused);
  EXPECT_EQ(ask(0x4028), kRefused);
  EXPECT_EQ(ask(0x4035, ofText("none.mp4")), kRefused);
  EXPECT_EQ(ask(0x4035), kRefused);
}

TEST_F(CameraAnswersTest, KeepsExtraInfoByTheVideosName) {
  EXPECT_EQ(ask(0x4034, joined(textField("a.mp4", 64), {7, 8, 9})), kDone);
  EXPECT_EQ(ask(0x4035, {'a', '.', 'm', 'p', '4', 0}), (Bytes{1, 7, 8, 9}));
  EXPECT_EQ(ask(0x4035, ofText("a.mp4")), (Bytes{1, 7, 8, 9}));  // the closing zero may be missing
  EXPECT_EQ(ask(0x4034, textField("a.mp4", 64)), kDone);
  EXPECT_EQ(ask(0x4035, ofText("a.mp4")), kDone);
}

TEST_F(CameraAnswersTest, RefusesExtraInfoWithoutANameOrTooMuchOfIt) {
  for (const std::uint16_t code : Codes{0x4033, 0x4034}) {
    EXPECT_EQ(ask(code, Bytes(63, 'a')), kRefused);
    EXPECT_EQ(ask(code, Bytes(64)), kRefused);
    EXPECT_EQ(ask(code, Bytes(64, 'a')), kDone);
    EXPECT_EQ(ask(code, Bytes(64 + 65537, 'a')), kRefused);
  }
}

TEST_F(CameraAnswersTest, LetsTextFilesLandInTheStorage) {
  EXPECT_EQ(ask(0x402D, joined(textField("note.txt", 32), {2, 0, 'h', 'i'})), (Bytes{1, 0}));
  EXPECT_EQ(contentOf(folder.path() / "note.txt"), (Bytes{'h', 'i'}));
}

TEST_F(CameraAnswersTest, TellsWhyATextFileIsRefused) {
  EXPECT_EQ(ask(0x402D, Bytes(33)), (Bytes{0, 1}));                                            // too short
  EXPECT_EQ(ask(0x402D, joined(textField("note.txt", 32), {3, 0, 'h', 'i'})), (Bytes{0, 1}));  // another size
  EXPECT_EQ(ask(0x402D, joined(textField("../note.txt", 32), {0, 0})), (Bytes{0, 2}));         // bad name
  EXPECT_EQ(ask(0x402D, joined(textField("note.txt/", 32), {0, 0})), (Bytes{0, 2}));           // bad name
  EXPECT_EQ(ask(0x402D, joined(textField("note.txt", 32), {0, 0})), (Bytes{1, 0}));            //
  EXPECT_EQ(ask(0x402D, joined(textField("note.txt/below", 32), {0, 0})), (Bytes{0, 4}));      // cannot be written
  camera->setCard(3);
  EXPECT_EQ(ask(0x402D, joined(textField("note.txt", 32), {1, 0, 'h'})), (Bytes{0, 3}));  // no card
}

TEST_F(CameraAnswersTest, CalibrationIsEnabledOnceItIsSet) {
  EXPECT_EQ(ask(0x403A), (Bytes{1, 0}));
  EXPECT_EQ(ask(0x403B), (Bytes{1, 0}));
  ask(0x4036, Bytes(10));
  EXPECT_EQ(ask(0x403A), (Bytes{1, 1}));
  EXPECT_EQ(ask(0x403B), (Bytes{1, 0}));
  ask(0x4044, Bytes(14));
  EXPECT_EQ(ask(0x403B), (Bytes{1, 1}));
}

TEST_F(CameraAnswersTest, TellsTheLensIndex) { EXPECT_EQ(ask(0x403C), (Bytes{1, 1, 0, 0, 0})); }

TEST_F(CameraAnswersTest, EndsDeletionsOfWhichThereIsNone) { EXPECT_EQ(ask(0x4041), kDone); }

TEST_F(CameraAnswersTest, TakesSensorUpdatesSilently) {
  for (const std::size_t size : {0u, 16u, 24u, 25u}) {
    for (const std::uint16_t code : Codes{0x400A, 0x4011, 0x4021}) request(code, Bytes(size));
  }
  EXPECT_TRUE(host->replies.empty());
}

TEST_F(CameraAnswersTest, RefusesUnknownRequests) {
  for (const std::uint16_t code : Codes{0x0000, 0x0005, 0x0010, 0x4000, 0x4003, 0x404A, 0x6001, 0xFFFF})
    EXPECT_EQ(ask(code), kRefused) << code;
}

TEST_F(CameraAnswersTest, KnowsNoAudioBitrateBeforeFirmware190) {
  CameraStart start;
  start.firmware = 189;
  makeCamera(start);
  EXPECT_EQ(ask(0x4048), kRefused);
  EXPECT_EQ(ask(0x0013, counting(4)), kRefused);
  start.firmware = 190;
  makeCamera(start);
  EXPECT_EQ(ask(0x4048), (Bytes{1, 0x00, 0xF4, 0x01, 0x00}));
}

TEST_F(CameraAnswersTest, RefusesBodiesWhereNoneBelongs) {
  for (const std::uint16_t code : Codes{0x4012, 0x4022, 0x4025, 0x403A, 0x403B, 0x403C, 0x4041, 0x4042, 0x4043})
    EXPECT_EQ(ask(code, {0}), kRefused) << code;
  EXPECT_EQ(ask(0x400E, {0}), kNone);
  EXPECT_EQ(ask(0x4006, Bytes(7)), kRefused);
}

TEST(RefusalTest, TellsFlagsFromOtherFirstBytes) {
  for (const std::uint16_t code : Codes{0x0007, 0x0011, 0x000F, 0x0009, 0x000A, 0x4001, 0x4002, 0x400E, 0x4049})
    EXPECT_FALSE(hasFlag(code)) << code;
  for (const std::uint16_t code : Codes{0x0004, 0x0008, 0x4012, 0x402E}) EXPECT_TRUE(hasFlag(code)) << code;
}

TEST(RefusalTest, IsAFlagOrWhereThereIsNoneAnEmptyBody) {
  std::vector<Bytes> empty;
  for (const std::uint16_t code : Codes{0x0007, 0x0011, 0x000F, 0x0009, 0x000A, 0x4001, 0x4002, 0x400E})
    empty.push_back(refusal(code));
  EXPECT_THAT(empty, Each(Bytes()));
  EXPECT_EQ(refusal(0x0008), kRefused);
  EXPECT_EQ(refusal(0x4012), kRefused);
}

}  // namespace
}  // namespace zel::simulator

#include "gateway/line/camera_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/gateway/line/line_test.h"

namespace zel::test {
namespace {

using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const Bytes kBattery = message(0x4001), kBatteryReply = message(0xC001, bytes({1, 80}));
const Bytes kStart = message(0x0004, bytes({0})), kStarted = message(0x8004, bytes({1, 0}));
const Bytes kStop = message(0x0006), kStopped = message(0x8006, bytes({1}));
const Bytes kSoundOn = message(0x000E, bytes({1})), kSoundOff = message(0x000E, bytes({0}));
const Bytes kSwitched = message(0x800E, bytes({1}));
const Bytes kKeyPicture = frameOf(1, join(kSps, kPps, kIdr)), kPicture = frameOf(1, kSlice);

class CameraLineTest : public LineTest {
 protected:
  // A host that sees the preview, which the camera has been asked for.
  HostId firstViewer() {
    const HostId id = syncedHost();
    asks(id, kStart);
    EXPECT_THAT(asked(), ElementsAre(kStart));
    camera(kStarted);
    EXPECT_THAT(told(id), ElementsAre(kStarted));
    return id;
  }
  HostId laterViewer() {
    const HostId id = syncedHost();
    pass(milliseconds(5));  // the rest between two hosts
    asks(id, kStart);
    return id;
  }
  // Enough pictures for a host that does not read to be too slow: 17 of a mebibyte.
  void showMuch() {
    for (int i = 0; i < 17; ++i) camera(frameOf(1, join(kSlice, repeated(1 << 20, 0x55))));
  }
};

// -- The marker

TEST_F(CameraLineTest, AnswersTheFirstSyncDataAtOnceWithTheMarkerAndTheReply) {
  const HostId id = host();
  flow();
  asks(id, message(0x402E, kMarker));
  EXPECT_THAT(written(id), ElementsAre(kMarker, message(0xC02E, bytes({1}))));
  EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(CameraLineTest, TellsAHostNothingBeforeItsMarker) {
  const HostId id = host();
  flow();
  camera(message(0x6003, bytes({1, 40})));
  EXPECT_THAT(written(id), IsEmpty());
}

TEST_F(CameraLineTest, SendsASignOfLifeRightBehindTheMarker) {
  const HostId id = host();
  flow();
  asks(id, message(0x402E, kMarker));
  written(id);
  pass(milliseconds(2));
  EXPECT_THAT(written(id), ElementsAre(kHeartbeat));
}

TEST_F(CameraLineTest, GivesTheMarkerOnce) {
  const HostId id = syncedHost();
  asks(id, message(0x402E, kMarker));
  EXPECT_THAT(told(id), ElementsAre(message(0xC02E, bytes({1}))));
}

TEST_F(CameraLineTest, PromisesNoFramesBeforeTheCameraSendsSome) {
  const HostId id = host();
  asks(id, message(0x402E, kMarker));
  EXPECT_THAT(written(id), IsEmpty());
  flow();
  EXPECT_THAT(written(id), ElementsAre(kMarker, message(0xC02E, bytes({1}))));
}

TEST_F(CameraLineTest, PromisesNoFramesWhileTheCameraIsSilent) {
  flow();
  line_.noteSilence();
  const HostId id = host();
  asks(id, message(0x402E, kMarker));
  EXPECT_THAT(written(id), IsEmpty());
  flow();
  EXPECT_THAT(written(id), SizeIs(2));
}

TEST_F(CameraLineTest, PassesOtherSyncDataOn) {
  const HostId id = syncedHost();
  asks(id, message(0x402E, bytes({1, 2})));
  EXPECT_THAT(asked(), ElementsAre(message(0x402E, bytes({1, 2}))));
  camera(message(0xC02E, bytes({0})));
  EXPECT_THAT(told(id), ElementsAre(message(0xC02E, bytes({0}))));
}

TEST_F(CameraLineTest, AsksTheCameraForItsMarkerAndKeepsTheReply) {
  const HostId id = syncedHost();
  line_.askForMarker(true);
  EXPECT_THAT(asked(), ElementsAre(message(0x402E, kMarker)));
  camera(message(0xC02E, bytes({1})));
  EXPECT_THAT(told(id), IsEmpty());
}

// -- Requests

TEST_F(CameraLineTest, GivesAReplyToWhoAsked) {
  const HostId one = syncedHost(), other = syncedHost();
  asks(one, kBattery);
  camera(kBatteryReply);
  EXPECT_THAT(told(one), ElementsAre(kBatteryReply));
  EXPECT_THAT(told(other), IsEmpty());
}

TEST_F(CameraLineTest, GivesEventsToAll) {
  const HostId one = syncedHost(), other = syncedHost();
  camera(message(0x6008, bytes({3})));
  EXPECT_THAT(told(one), ElementsAre(message(0x6008, bytes({3}))));
  EXPECT_THAT(told(other), ElementsAre(message(0x6008, bytes({3}))));
}

TEST_F(CameraLineTest, OneRequestOfAKindIsUnderWayAtATime) {
  const HostId one = syncedHost(), other = syncedHost();
  asks(one, kBattery);
  asks(other, kBattery);
  EXPECT_THAT(asked(), ElementsAre(kBattery));
  camera(kBatteryReply);
  pass(milliseconds(5));
  EXPECT_THAT(asked(), ElementsAre(kBattery));
  camera(message(0xC001, bytes({1, 79})));
  EXPECT_THAT(told(one), ElementsAre(kBatteryReply));
  EXPECT_THAT(told(other), ElementsAre(message(0xC001, bytes({1, 79}))));
}

TEST_F(CameraLineTest, ADuplicateReplyCompletesNobodysRequest) {
  const HostId one = syncedHost(), other = syncedHost();
  asks(one, kBattery);
  asks(other, kBattery);
  camera(kBatteryReply);
  camera(kBatteryReply);
  EXPECT_THAT(told(other), IsEmpty());
  asked();
  pass(milliseconds(49));
  EXPECT_THAT(asked(), IsEmpty()) << "a camera that answers twice has more time to do so";
  pass(milliseconds(1));
  EXPECT_THAT(asked(), ElementsAre(kBattery));
}

TEST_F(CameraLineTest, AnUnaskedReplyIsDropped) {
  const HostId id = syncedHost();
  camera(kBatteryReply);
  EXPECT_THAT(told(id), IsEmpty());
}

TEST_F(CameraLineTest, AReplyToAHostThatHasGoneIsNotTheNextOnes) {
  const HostId one = syncedHost(), other = syncedHost();
  asks(one, kBattery);
  asks(other, kBattery);
  asked();
  line_.leave(one, now_);
  EXPECT_THAT(asked(), IsEmpty());
  camera(kBatteryReply);
  EXPECT_THAT(told(other), IsEmpty());
  pass(milliseconds(5));
  EXPECT_THAT(asked(), ElementsAre(kBattery));
}

TEST_F(CameraLineTest, ARequestWithoutAReplyFreesTheLineAfterFifteenSeconds) {
  const HostId one = syncedHost(), other = syncedHost();
  asks(one, kBattery);
  asks(other, kBattery);
  asked();
  pass(milliseconds(14'999));
  EXPECT_THAT(asked(), IsEmpty());
  pass(milliseconds(6));
  EXPECT_THAT(asked(), ElementsAre(kBattery));
}

TEST_F(CameraLineTest, WhatHasNoReplyGoesToTheCameraAtOnce) {
  const HostId one = syncedHost(), other = syncedHost();
  const Bytes gps = message(0x400A, repeated(24, 0));
  asks(one, gps);
  asks(other, gps);
  EXPECT_THAT(asked(), ElementsAre(gps, gps));
}

TEST_F(CameraLineTest, ReplyCodesOfAHostGoNowhere) {
  const HostId id = syncedHost();
  asks(id, join(kBatteryReply, frameOf(4, {}), frameOf(4, bytes({1})), frameOf(77, bytes({1})), kBattery));
  EXPECT_THAT(asked(), ElementsAre(kBattery));
}

// -- Captures

const Bytes kShutter = message(0x0007, repeated(64, 0)),
            kBracket = message(0x000F, join(repeated(64, 0), bytes({2}), repeated(9, 0)));
const Bytes kResult = bytes({1, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 0});
const Bytes kPhoto = frameOf(3, repeated(65, 7));

TEST_F(CameraLineTest, PhotosGoToWhoTookThem) {
  const HostId one = syncedHost(), other = syncedHost();
  asks(one, kShutter);
  EXPECT_TRUE(line_.awaitsPhoto());
  camera(message(0x8007, kResult));
  camera(kPhoto);
  EXPECT_THAT(told(one), ElementsAre(message(0x8007, kResult), kPhoto));
  EXPECT_THAT(told(other), IsEmpty());
  EXPECT_FALSE(line_.awaitsPhoto());
}

TEST_F(CameraLineTest, AnotherCaptureOfAnyKindWaitsForTheLastPhoto) {
  const HostId one = syncedHost(), other = syncedHost();
  asks(one, kBracket);
  asks(other, kShutter);
  camera(message(0x800F, kResult));
  camera(kPhoto);
  pass(seconds(1));
  EXPECT_THAT(asked(), ElementsAre(kBracket));
  camera(kPhoto);
  pass(milliseconds(5));
  EXPECT_THAT(asked(), ElementsAre(kShutter));
  camera(message(0x8007, kResult));
  camera(kPhoto);
  EXPECT_THAT(told(other), ElementsAre(message(0x8007, kResult), kPhoto));
}

TEST_F(CameraLineTest, ARefusedCaptureEndsWithItsReply) {
  const HostId one = syncedHost(), other = syncedHost();
  asks(one, kShutter);
  asks(other, kShutter);
  asked();
  camera(message(0x8007, {}));
  pass(milliseconds(5));
  EXPECT_THAT(asked(), ElementsAre(kShutter));
}

TEST_F(CameraLineTest, APhotoThatNeverComesIsWaitedForAfterTheLatestProgress) {
  const HostId one = syncedHost(), other = syncedHost();
  asks(one, kShutter);
  asks(other, kShutter);
  asked();
  pass(seconds(70));
  camera(message(0x8007, kResult));
  pass(seconds(74));
  EXPECT_THAT(asked(), IsEmpty());
  pass(seconds(2));
  EXPECT_THAT(asked(), ElementsAre(kShutter));
}

TEST_F(CameraLineTest, PhotosOfAHostThatHasGoneAreNobodys) {
  const HostId one = syncedHost(), other = syncedHost();
  asks(one, kShutter);
  asks(other, kShutter);
  line_.leave(one, now_);
  camera(message(0x8007, kResult));
  camera(kPhoto);
  EXPECT_THAT(told(other), IsEmpty());
}

// -- Uploads

Bytes file(int letter) { return frameOf(9, join(bytes({1, 0, 0, 0}), repeated(64, letter), bytes({letter}))); }
const Bytes kFileReply = frameOf(9, join(bytes({0, 0, 2, 0, 0, 0}), repeated(64, 'a')));

TEST_F(CameraLineTest, OneFileIsUnderWayAtATime) {
  const HostId one = syncedHost(), other = syncedHost();
  EXPECT_TRUE(line_.mayBeginFile(one, now_));
  EXPECT_FALSE(line_.mayBeginFile(other, now_));
  asks(one, file('a'));
  EXPECT_THAT(asked(), ElementsAre(file('a')));
  camera(kFileReply);
  EXPECT_THAT(told(one), ElementsAre(kFileReply));
  EXPECT_TRUE(line_.mayBeginFile(other, now_));
}

TEST_F(CameraLineTest, RepliesOfOtherKindsEndNoUpload) {
  const HostId one = syncedHost(), other = syncedHost();
  line_.mayBeginFile(one, now_);
  asks(one, file('a'));
  const Bytes otherKind = frameOf(9, join(bytes({0, 0, 3, 0, 1, 0}), repeated(64, 'a')));
  camera(otherKind);
  EXPECT_THAT(told(one), ElementsAre(otherKind));
  EXPECT_FALSE(line_.mayBeginFile(other, now_));
}

TEST_F(CameraLineTest, AFileThatNobodySentIsAnsweredToNobody) {
  const HostId id = syncedHost();
  camera(kFileReply);
  EXPECT_THAT(told(id), IsEmpty());
}

TEST_F(CameraLineTest, TheReplyToAFileOfAHostThatHasGoneIsNotTheNextOnes) {
  const HostId one = syncedHost(), other = syncedHost();
  line_.mayBeginFile(one, now_);
  line_.mayBeginFile(other, now_);
  asks(one, file('a'));
  line_.leave(one, now_);
  EXPECT_FALSE(line_.mayBeginFile(other, now_));
  camera(kFileReply);
  EXPECT_THAT(told(other), IsEmpty());
  EXPECT_TRUE(line_.mayBeginFile(other, now_));
}

TEST_F(CameraLineTest, AHostWhoseFileStandsStillIsCutOff) {
  const HostId one = syncedHost(), other = syncedHost();
  line_.mayBeginFile(one, now_);
  line_.mayBeginFile(other, now_);
  pass(milliseconds(74'999));
  EXPECT_FALSE(line_.isCutOff(one));
  pass(milliseconds(1));
  EXPECT_TRUE(line_.isCutOff(one));
  EXPECT_FALSE(line_.isCutOff(other));
  EXPECT_TRUE(line_.mayBeginFile(other, now_));
}

// -- The preview

TEST_F(CameraLineTest, TheFirstViewerGetsEverything) {
  const HostId one = firstViewer(), other = syncedHost();
  camera(kPicture);
  camera(kKeyPicture);
  EXPECT_THAT(told(one), ElementsAre(kPicture, kKeyPicture));
  EXPECT_THAT(told(other), IsEmpty());
}

TEST_F(CameraLineTest, ALaterViewerIsAnsweredWithoutTheCamera) {
  firstViewer();
  const HostId later = syncedHost();
  pass(milliseconds(5));
  asks(later, message(0x0004, bytes({13})));
  EXPECT_THAT(told(later), ElementsAre(kStarted));
  EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(CameraLineTest, ALateViewerGetsEverythingSinceTheKeyPicture) {
  firstViewer();
  camera(kPicture);
  camera(kKeyPicture);
  camera(kPicture);
  const HostId late = laterViewer();
  EXPECT_THAT(told(late), ElementsAre(kStarted));
  pass(milliseconds(100));
  EXPECT_THAT(told(late), ElementsAre(kKeyPicture, kPicture));
  camera(kPicture);
  EXPECT_THAT(told(late), ElementsAre(kPicture));
}

TEST_F(CameraLineTest, ALateViewerIsNotFloodedWithWhatItMissed) {
  firstViewer();
  camera(kKeyPicture);
  for (int i = 0; i < 20; ++i) camera(kPicture);
  const HostId late = laterViewer();
  pass(milliseconds(50));
  EXPECT_THAT(told(late), ElementsAre(kStarted, kKeyPicture));
  pass(milliseconds(8));
  EXPECT_THAT(told(late), ElementsAre(kPicture));
}

TEST_F(CameraLineTest, WithoutAKeyPictureALateViewerWaitsForOne) {
  firstViewer();
  camera(kPicture);
  const HostId late = laterViewer();
  camera(kPicture);
  pass(milliseconds(100));
  EXPECT_THAT(told(late), ElementsAre(kStarted));
  camera(kKeyPicture);
  EXPECT_THAT(told(late), ElementsAre(kKeyPicture));
}

TEST_F(CameraLineTest, ThePreviewEndsWithTheLastThatStops) {
  const HostId one = firstViewer(), other = laterViewer();
  asks(one, kStop);
  EXPECT_THAT(told(one), ElementsAre(kStopped));
  EXPECT_THAT(asked(), IsEmpty());
  asks(other, kStop);
  EXPECT_THAT(asked(), ElementsAre(kStop));
}

TEST_F(CameraLineTest, ThePreviewEndsWithTheLastThatDisappears) {
  const HostId one = firstViewer(), other = laterViewer();
  line_.leave(one, now_);
  EXPECT_THAT(asked(), IsEmpty());
  line_.leave(other, now_);
  EXPECT_THAT(asked(), ElementsAre(kStop));
  const HostId next = syncedHost();
  camera(kStopped);
  EXPECT_THAT(told(next), IsEmpty());
}

TEST_F(CameraLineTest, AHostThatNeverStartedStopsNobodysPreview) {
  const HostId one = firstViewer(), other = syncedHost();
  asks(other, kStop);
  EXPECT_THAT(told(other), ElementsAre(kStopped));
  camera(kPicture);
  EXPECT_THAT(told(one), ElementsAre(kPicture));
  EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(CameraLineTest, ARefusedStartIsNoPreview) {
  const HostId one = syncedHost(), other = syncedHost();
  asks(one, kStart);
  asks(other, kStart);
  EXPECT_THAT(asked(), ElementsAre(kStart));
  camera(message(0x8004, bytes({0})));
  pass(milliseconds(5));
  EXPECT_THAT(asked(), ElementsAre(kStart)) << "the other's is the first one then";
}

TEST_F(CameraLineTest, AHostAloneMayAskForAnotherResolution) {
  const HostId one = firstViewer();
  asks(one, message(0x0004, bytes({4})));
  EXPECT_THAT(asked(), ElementsAre(message(0x0004, bytes({4}))));
}

TEST_F(CameraLineTest, AStopThatWaitedIsNotTheCamerasWhenSomebodyWatchesAgain) {
  const HostId one = firstViewer(), other = syncedHost();
  asks(one, kStop);
  asks(one, kStart);
  EXPECT_THAT(asked(), ElementsAre(kStop, kStart));
  camera(kStopped);
  camera(kStarted);
  asks(other, kStop);
  pass(milliseconds(100));
  EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(CameraLineTest, SoundIsCountedAsThePreviewIs) {
  const HostId one = firstViewer(), other = laterViewer();
  asks(one, kSoundOn);
  EXPECT_THAT(asked(), ElementsAre(kSoundOn));
  camera(kSwitched);
  asks(other, kSoundOn);
  pass(milliseconds(5));
  EXPECT_THAT(asked(), IsEmpty());
  asks(one, kSoundOff);
  EXPECT_THAT(asked(), IsEmpty());
  line_.leave(other, now_);
  pass(milliseconds(100));
  EXPECT_THAT(asked(), ElementsAre(kSoundOff)) << "the first one still watches";
}

TEST_F(CameraLineTest, SoundGoesToWhoWantsIt) {
  const HostId one = firstViewer(), other = laterViewer();
  asks(one, kSoundOn);
  camera(kSwitched);
  told(one);
  told(other);
  camera(frameOf(2, bytes({0xFF, 0xF1})));
  EXPECT_THAT(told(one), ElementsAre(frameOf(2, bytes({0xFF, 0xF1}))));
  EXPECT_THAT(told(other), IsEmpty());
}

// -- The clock

TEST_F(CameraLineTest, EachHostsTimesCountFromItsOwnComparison) {
  const HostId one = firstViewer();
  asks(one, message(0x4049, repeated(8, 0)));
  camera(message(0xC049, repeated(8, 0)));
  pass(milliseconds(1000));
  const HostId other = syncedHost();
  asks(other, message(0x4049, repeated(8, 0)));
  pass(milliseconds(4));
  camera(message(0xC049, repeated(8, 0)));  // half way lies 1002 ms after the first one's
  written(one);
  pass(milliseconds(10));
  camera(timeFrame(0, 12));
  EXPECT_THAT(written(one).back(), timeFrame(0, 1014));
  asks(other, kStart);
  pass(milliseconds(5));
  written(other);
  camera(timeFrame(0, 20));
  camera(kKeyPicture);
  EXPECT_THAT(written(other), ::testing::Contains(timeFrame(0, 20)));
}

TEST_F(CameraLineTest, ATimeFromBeforeAComparisonKeepsItsMeaning) {
  const HostId one = firstViewer();
  asks(one, message(0x4049, repeated(8, 0)));
  camera(message(0xC049, repeated(8, 0)));
  pass(milliseconds(5000));
  camera(timeFrame(0, 5000));
  const HostId other = syncedHost();
  asks(other, message(0x4049, repeated(8, 0)));
  camera(message(0xC049, repeated(8, 0)));
  written(one);
  camera(timeFrame(0, 5010));  // stamped before the camera set its clock
  EXPECT_THAT(written(one).back(), timeFrame(0, 5010));
}

// -- Slow hosts

TEST_F(CameraLineTest, ASlowViewerSkipsToTheNextKeyPictureAndLosesNoReply) {
  const HostId slow = firstViewer();
  written(slow);
  asks(slow, kBattery);
  camera(kBatteryReply);
  showMuch();
  camera(kPicture);
  EXPECT_THAT(told(slow), ElementsAre(kBatteryReply));
  camera(kPicture);
  camera(kKeyPicture);
  camera(kPicture);
  EXPECT_THAT(told(slow), ElementsAre(kKeyPicture, kPicture));
}

TEST_F(CameraLineTest, ASlowViewerDelaysNoOther) {
  const HostId slow = firstViewer(), quick = laterViewer();
  camera(kKeyPicture);
  pass(milliseconds(100));
  told(quick);
  for (int i = 0; i < 40; ++i) {
    camera(frameOf(1, join(kSlice, repeated(1 << 20, i))));
    EXPECT_THAT(told(quick), SizeIs(1)) << i;
  }
  EXPECT_FALSE(line_.isCutOff(slow));
}

TEST_F(CameraLineTest, AHostThatNeverReadsIsCutOff) {
  const HostId id = syncedHost();
  for (int i = 0; i < 257 && !line_.isCutOff(id); ++i) camera(message(0x6008, repeated(1 << 20, 0)));
  EXPECT_TRUE(line_.isCutOff(id));
}

TEST_F(CameraLineTest, AHostThatFloodsTheCameraIsReadNoMore) {
  const HostId id = syncedHost(), other = syncedHost();
  for (int i = 0; i < 64; ++i) asks(id, message(0x5000 + i));
  EXPECT_FALSE(line_.mayRead(id));
  EXPECT_TRUE(line_.mayRead(other));
  camera(message(0xD000));
  EXPECT_TRUE(line_.mayRead(id));
}

TEST_F(CameraLineTest, ACameraThatReadsNothingHoldsHostsBack) {
  const HostId id = syncedHost();
  EXPECT_TRUE(line_.mayRead(id));
  for (int i = 0; i < 2; ++i) asks(id, message(0x400A, repeated(600'000, 0)));
  EXPECT_FALSE(line_.mayRead(id));
  asked();
  EXPECT_TRUE(line_.mayRead(id));
}

TEST_F(CameraLineTest, TellsOfLifeWhileTheCameraLives) {
  const HostId id = syncedHost();
  pass(milliseconds(900));
  written(id);
  flow();
  pass(milliseconds(500));
  EXPECT_THAT(written(id), SizeIs(1));
  pass(seconds(2));
  written(id);
  pass(seconds(5));
  EXPECT_THAT(written(id), IsEmpty()) << "the camera is silent";
}

}  // namespace
}  // namespace zel::test

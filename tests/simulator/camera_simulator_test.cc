#include "simulator/camera_simulator.h"

#include <gmock/gmock.h>

#include <fstream>

#include "tests/simulator/connected_test.h"
#include "tests/simulator/decoded_jpeg.h"

namespace zel::simulator {
namespace {

using testing::AnyOf;
using testing::SizeIs;

const Bytes kSmallPhotos = {9, 0, 0, 0, 4, 0, 0x02, 0x40, 2};

Bytes shutter() {
  Bytes request = {72, 0, 0, 0, 4, 0, 0x07, 0x00};
  request.resize(72);
  return request;
}

using CameraSimulatorTest = ConnectedTest;

TEST_F(CameraSimulatorTest, AnswersLaterSyncRequestsWithoutAMarker) {
  start();
  synchronise();
  EXPECT_EQ(answerTo(kSyncRequest), reply({0x2E, 0xC0, 1}));
  EXPECT_EQ(answerTo(ask(0x01, 0x40)), reply({0x01, 0xC0, 1, 100}));
}

TEST_F(CameraSimulatorTest, RefusesSyncDataThatIsNoMarker) {
  start();
  synchronise();
  EXPECT_EQ(answerTo({9, 0, 0, 0, 4, 0, 0x2E, 0x40, 0xAF}), reply({0x2E, 0xC0, 0}));
}

const Bytes kClockRequest = {16, 0, 0, 0, 4, 0, 0x49, 0x40, 1, 2, 3, 4, 5, 6, 7, 8};

TEST_F(CameraSimulatorTest, AnswersTheClockFromFirmware190) {
  options.identity.firmware = 190;
  start();
  synchronise();
  const Frame answer = answerTo(kClockRequest);
  ASSERT_THAT(answer.payload, SizeIs(10));
  EXPECT_EQ(numberAt<std::uint16_t>(answer.payload, 0), 0xC049);
  EXPECT_LT(numberAt<std::uint64_t>(answer.payload, 2), 1000u);  // the media clock has just begun
}

TEST_F(CameraSimulatorTest, KnowsNoClockBelowFirmware190) {
  options.identity.firmware = 189;
  start();
  synchronise();
  EXPECT_EQ(answerTo(kClockRequest), reply({0x49, 0xC0, 0}));
}

TEST_F(CameraSimulatorTest, RefusesAClockRequestOfAnotherLength) {
  start();
  synchronise();
  EXPECT_EQ(answerTo(ask(0x49, 0x40)), reply({0x49, 0xC0, 0}));
}

TEST_F(CameraSimulatorTest, AnswersRequestsThatComeInPieces) {
  start();
  synchronise();
  for (const std::uint8_t byte : ask(0x01, 0x40)) host->send(Bytes{byte});
  EXPECT_EQ(host->frame(), reply({0x01, 0xC0, 1, 100}));
}

TEST_F(CameraSimulatorTest, ClosesAConnectionWhoseFramesAreImpossible) {
  std::vector<std::string> warnings;
  options.warn = [&warnings](const std::string& line) { warnings.push_back(line); };
  start();
  host->send(Bytes{5, 0, 0, 0, 4, 0});
  EXPECT_TRUE(host->waitForClose());
  simulator->stop();
  EXPECT_THAT(warnings, testing::ElementsAre(testing::HasSubstr("5 bytes")));
}

TEST_F(CameraSimulatorTest, SendsAPhotoThatIsAPicture) {
  start();
  synchronise();
  EXPECT_EQ(answerTo(kSmallPhotos), reply({0x02, 0xC0, 2}));
  EXPECT_EQ(answerTo(shutter()), reply({0x0C, 0x60, 1}));
  const Frame file = host->frame();
  ASSERT_THAT(file.payload, SizeIs(2 + 12 + 30 + 1));
  EXPECT_EQ(numberAt<std::uint16_t>(file.payload, 0), 0x8007);
  const Frame photo = host->frame();
  EXPECT_EQ(photo.type, 3);
  ASSERT_GT(photo.payload.size(), 64u);
  const std::span<const std::uint8_t> all = photo.payload;
  EXPECT_EQ(textIn(all.first(64)), textIn(std::span(file.payload).subspan(14)));
  EXPECT_EQ(numberAt<std::uint64_t>(file.payload, 6), photo.payload.size() - 64);
  const auto picture = decodeJpeg(all.subspan(64));
  ASSERT_TRUE(picture.has_value());
  EXPECT_EQ(picture->width, 640);
  EXPECT_EQ(picture->height, 320);
  EXPECT_EQ(host->frame(), reply({0x0C, 0x60, 0}));
}

TEST_F(CameraSimulatorTest, WritesTheFilesThatTheHostSends) {
  start();
  synchronise();
  Bytes upload = {77, 0, 0, 0, 9, 0, 3, 0, 0, 0, 'd', '/', 'f'};
  upload.resize(74);
  add(upload, Bytes{1, 2, 3});
  const Frame answer = answerTo(upload);
  EXPECT_EQ(answer.type, 9);
  Bytes expected = {0, 0, 2, 0, 0, 0, 'd', '/', 'f'};
  expected.resize(70);
  EXPECT_EQ(answer.payload, expected);
  EXPECT_EQ(contentOf(folder.path() / "storage/d/f"), (Bytes{1, 2, 3}));
}

TEST_F(CameraSimulatorTest, SaysTheEventsThatItIsTold) {
  start();
  synchronise();
  std::string error;
  EXPECT_TRUE(simulator->tell("battery 1 40", error));
  EXPECT_EQ(host->frame(), reply({0x03, 0x60, 1, 40}));
  simulator->sendEvent(0x6007, {5});
  EXPECT_EQ(host->frame(), reply({0x07, 0x60, 5}));
  EXPECT_FALSE(simulator->tell("nonsense", error));
  EXPECT_THAT(error, testing::HasSubstr("nonsense"));
}

TEST_F(CameraSimulatorTest, RefusesByTheShapeOfEachReply) {
  start({"refuse=0x0007", "refuse=0x4001", "refuse=0x4012"});
  synchronise();
  EXPECT_EQ(answerTo(shutter()), reply({0x07, 0x80}));
  EXPECT_EQ(answerTo(ask(0x01, 0x40)), reply({0x01, 0xC0}));
  EXPECT_EQ(answerTo(ask(0x12, 0x40)), reply({0x12, 0xC0, 0}));
}

TEST_F(CameraSimulatorTest, LeavesOutShortensAndDoublesRepliesOfChosenRequests) {
  start({"no-reply=0x4001", "short-reply=0x4012", "duplicate-reply=0x4024"});
  synchronise();
  host->send(ask(0x01, 0x40));
  EXPECT_EQ(answerTo(ask(0x12, 0x40)), reply({0x12, 0xC0}));
  EXPECT_EQ(answerTo(ask(0x24, 0x40)), reply({0x24, 0xC0, 1, 0}));
  EXPECT_EQ(host->frame(), reply({0x24, 0xC0, 1, 0}));
  EXPECT_EQ(answerTo(ask(0x30, 0x40)), reply({0x30, 0xC0, 1, 0}));
}

TEST_F(CameraSimulatorTest, LetsALateReplyComeAfterOthers) {
  start({"late-reply=0x4001/100"});
  synchronise();
  host->send(ask(0x01, 0x40));
  host->send(ask(0x24, 0x40));
  EXPECT_EQ(host->frame(), reply({0x24, 0xC0, 1, 0}));
  EXPECT_EQ(host->frame(), reply({0x01, 0xC0, 1, 100}));
}

TEST_F(CameraSimulatorTest, RestartsOnOrder) {
  start();
  synchronise();
  EXPECT_EQ(answerTo({10, 0, 0, 0, 4, 0, 0x07, 0x40, 2, 0}), reply({0x07, 0xC0, 1}));
  EXPECT_TRUE(host->waitForClose());
}

TEST_F(CameraSimulatorTest, EndsInTheMiddleOfACaptureAndLeavesNothing) {
  start();
  synchronise();
  EXPECT_EQ(answerTo({9, 0, 0, 0, 4, 0, 0x02, 0x40, 1}), reply({0x02, 0xC0, 1}));
  EXPECT_EQ(answerTo(shutter()), reply({0x0C, 0x60, 1}));  // of a size that takes a while
  const std::string file = simulator->accessoryFile();
  simulator->stop();
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(CameraSimulatorTest, RemovesAStorageOfItsOwn) {
  simulator = std::make_unique<CameraSimulator>(options);
  std::string error;
  ASSERT_TRUE(simulator->start(error)) << error;
  const std::filesystem::path storage = simulator->storageFolder();
  EXPECT_TRUE(std::filesystem::is_directory(storage));
  simulator->stop();
  EXPECT_FALSE(std::filesystem::exists(storage));
}

TEST_F(CameraSimulatorTest, DoesNotStartOnAStorageThatCannotBe) {
  std::filesystem::create_directory(folder.path() / "bus");
  { std::ofstream(folder.path() / "file") << "x"; }
  options.storage = (folder.path() / "file").string();
  std::string error;
  EXPECT_FALSE(CameraSimulator(options).start(error));
  EXPECT_THAT(error, testing::HasSubstr(options.storage));
}

}  // namespace
}  // namespace zel::simulator

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

#include "tests/transport/recording_consumers.h"
#include "transport/camera_data_parser.h"
#include "transport/frame.h"

namespace zel::test {
namespace {

// A camera's stream as it comes: garbage, the marker, then frames of every kind.
struct Receiver {
  Receiver() {
    parser.setAccessory(&link);
    parser.setPreviewPlayer(player);
    parser.setPhotoParser(std::make_shared<RecordingPhoto>(log));
    parser.setUcdFile(std::make_shared<RecordingFile>(log));
    parser.registerMsgParser(
        CameraMsgParser(14, [this](std::uint64_t, const std::optional<ZELData>& body,
                                   void*) { log.push_back(entry("message", body ? body->bytes() : ByteView())); }),
        0x800B);
    parser.setIsNeedDataSynchronism(true);
  }

  void receive(ByteView chunk) {
    if (inPlace) return parser.parserData(chunk);
    parser.appendBytes(chunk.data(), chunk.size());
    parser.parserData();
  }

  Log finished() {
    parser.parserData();  // what follows the marker in its own chunk waits for one more call
    return log;
  }

  bool inPlace = false;
  Log log;
  RecordingLink link;
  std::shared_ptr<RecordingPlayer> player = std::make_shared<RecordingPlayer>(log);
  CameraDataParser parser;
};

Bytes frame(std::uint16_t type, const Bytes& payload) {
  Bytes result;
  appendLittleEndian(result, static_cast<std::uint32_t>(kFrameHeader + payload.size()));
  appendLittleEndian(result, type);
  return join(result, payload);
}

const Bytes kStream = join(bytes({1, 0xAF, 0xFA, 0xAF}), kMarker, frame(8, bytes({0, 5, 0, 0, 0, 0, 0, 0, 0})),
                           frame(1, bytes({0, 0, 0, 1, 0x65})), frame(2, bytes({0xFF, 0xF1})), frame(99, bytes({1})),
                           frame(4, bytes({0x0B, 0x80, 1})), frame(3, repeated(30, 7)), frame(9, bytes({1, 2, 3})),
                           frame(4, bytes({0x0B, 0x80})), frame(1, {}));

Log deliveredWhole() {
  Receiver receiver;
  receiver.receive(kStream);
  return receiver.finished();
}

TEST(CameraDataParserPropertyTest, DeliversEveryKindOfFrameOfTheRecordedStream) {
  EXPECT_EQ(deliveredWhole(), (Log{"videoTime 5", "video 0 0 0 1 101", "audio 255 241", "message 1",
                                   "photo 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7", "file 1 2 3",
                                   "message", "video"}));
}

TEST(CameraDataParserPropertyTest, DeliversTheSameForEverySingleCut) {
  const Log whole = deliveredWhole();
  for (std::size_t cut = 0; cut <= kStream.size(); ++cut) {
    for (const bool inPlace : {false, true}) {
      Receiver receiver;
      receiver.inPlace = inPlace;
      receiver.receive(ByteView(kStream).first(cut));
      receiver.receive(ByteView(kStream).subspan(cut));
      EXPECT_EQ(receiver.finished(), whole) << "cut at " << cut << ", in place " << inPlace;
    }
  }
}

TEST(CameraDataParserPropertyTest, DeliversTheSameOneByteAtATime) {
  for (const bool inPlace : {false, true}) {
    Receiver receiver;
    receiver.inPlace = inPlace;
    for (std::size_t i = 0; i < kStream.size(); ++i) receiver.receive(ByteView(kStream).subspan(i, 1));
    EXPECT_EQ(receiver.finished(), deliveredWhole());
  }
}

RC_GTEST_PROP(CameraDataParserPropertyTest, DeliversTheSameForRandomCuts, ()) {
  auto cuts = *rc::gen::container<std::vector<std::size_t>>(rc::gen::inRange<std::size_t>(0, kStream.size() + 1));
  cuts.push_back(kStream.size());
  std::sort(cuts.begin(), cuts.end());
  Receiver receiver;
  receiver.inPlace = *rc::gen::arbitrary<bool>();
  std::size_t from = 0;
  for (const std::size_t cut : cuts) {
    receiver.receive(ByteView(kStream).subspan(from, cut - from));
    from = cut;
  }
  RC_ASSERT(receiver.finished() == deliveredWhole());
}

RC_GTEST_PROP(CameraDataParserPropertyTest, NeverDeliversMoreBytesThanItReceived, (const Bytes& noise)) {
  Receiver receiver;
  receiver.inPlace = *rc::gen::arbitrary<bool>();
  receiver.parser.setIsNeedDataSynchronism(false);
  receiver.receive(noise);
  LinkStatistics statistics;
  receiver.parser.copyStatistics(statistics);
  std::uint64_t delivered = 0;
  for (const std::uint64_t count : statistics.bytes) delivered += count;
  RC_ASSERT(delivered + receiver.parser.data().size() <= noise.size());
}

}  // namespace
}  // namespace zel::test

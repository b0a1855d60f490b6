#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "link/camera_data_parser.h"
#include "protocol/frame.h"
#include "tests/link/long_stream.h"
#include "tests/link/recording_consumers.h"

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

// One camera's stream, as long as real ones, and how it is cut into reads.
struct LongStream {
  Bytes bytes;
  std::vector<std::size_t> reads;
};

// Frames below and above the shortest read that is taken apart in place, and beyond the longest.
LongStream randomLongStream() {
  static const Bytes kNoise = patterned(3'000'000, 7);
  const auto lengths = *rc::gen::container<std::vector<std::size_t>>(rc::gen::element<std::size_t>(
      6, 6, 7, 11, 15, 100, 1'000, 4'095, 4'096, 4'097, 8'192, 65'536, 300'000, 2'097'151, 2'097'152, 2'097'153));
  LongStream stream;
  for (const std::size_t length : lengths) {
    if (stream.bytes.size() > kReadBuffer) break;
    const auto type = *rc::gen::element<std::uint16_t>(1, 2, 3, 99);
    const auto from = static_cast<std::ptrdiff_t>(*rc::gen::inRange<std::size_t>(0, 900'000));
    stream.bytes = join(
        std::move(stream.bytes),
        frameOf(type, Bytes(kNoise.begin() + from, kNoise.begin() + from + static_cast<std::ptrdiff_t>(length - 6))));
  }
  if (*rc::gen::inRange(0, 4) == 0) {  // the position is lost, and a marker follows
    stream.bytes = join(std::move(stream.bytes), bytes({5, 0, 0, 0, 1, 0}), repeated(5'000, 1), kMarker,
                        frameOf(1, bytes({1, 2, 3})), frameOf(2, repeated(6'000, 4)));
  }
  for (std::size_t left = stream.bytes.size(); left > 0; left -= stream.reads.back()) {
    const auto read = *rc::gen::element<std::size_t>(1, 5, 6, 7, 4'095, 4'096, 4'097, 10'000, 65'536, 500'000,
                                                     kReadBuffer - 1, kReadBuffer, kReadBuffer + 1);
    // Short reads of a long rest take long and try nothing new.
    stream.reads.push_back(std::min(left, left > 2'000 * read ? kReadBuffer : read));
  }
  return stream;
}

// What a reader made of a stream, and where it stood after each read.
struct Outcome {
  std::vector<Bytes> payloads;
  std::vector<std::size_t> held;  // after each read
  std::uint64_t received = 0, discarded = 0, lost = 0, markers = 0;

  bool operator==(const Outcome&) const = default;
};

Outcome outcomeOf(const LongStream& stream, bool inPlace) {
  LongReader reader;
  Outcome outcome;
  ByteView rest = stream.bytes;
  for (const std::size_t read : stream.reads) {
    if (inPlace) {
      reader.read(rest.first(read));
    } else {
      reader.parser.appendBytes(rest.data(), read);
      reader.parser.parserData();
    }
    rest = rest.subspan(read);
    outcome.held.push_back(reader.parser.data().size());
  }
  const LinkStatistics statistics = reader.statistics();
  outcome.payloads = reader.payloads();
  outcome.received = statistics.bytesReceived;
  outcome.discarded = statistics.bytesDiscarded;
  outcome.lost = statistics.positionsLost;
  outcome.markers = statistics.markersFound;
  return outcome;
}

RC_GTEST_PROP(CameraDataParserPropertyTest, MakesTheSameOfAReadInPlaceAsOfACopiedOne, ()) {
  const LongStream stream = randomLongStream();
  RC_ASSERT(outcomeOf(stream, true) == outcomeOf(stream, false));
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

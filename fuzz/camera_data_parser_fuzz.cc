// The de-multiplexer on hostile bytes, in reads of any size up to a real session's. Each step is one byte and what it
// needs: raw bytes, a frame of a length around those that matter, the marker, the size of the reads from here on. The
// same stream goes to two de-multiplexers, one that copies each read and one that takes it apart where it lies; they
// must make the same of it, also where a consumer closes or reopens the session inside a frame.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "fuzz/fuzz_input.h"
#include "link/camera_data_parser.h"
#include "protocol/frame.h"
#include "tests/link/recording_consumers.h"

namespace {

using zel::fuzz::Input;
using zel::fuzz::require;
using zel::test::RecordingLink;

constexpr std::size_t kReadBuffer = 2'097'152;  // what a session reads at most at once
constexpr std::size_t kMostBytes = 3 * kReadBuffer;
constexpr std::size_t kLengths[] = {6,     7,     8,     9,     14,    15,     20,     100,
                                    4'000, 4'095, 4'096, 4'097, 5'000, 65'535, 65'536, 100'000};
constexpr std::size_t kReads[] = {1,     2,     5,     6,     7,     10,     11,          64,
                                  1'000, 4'095, 4'096, 4'097, 8'192, 65'536, kReadBuffer, kReadBuffer + 1};

// What consumers got, as one number, so that a long frame costs no line of text.
class Digest {
 public:
  void add(std::uint64_t value) { value_ = (value_ ^ value) * 1'099'511'628'211u; }
  void add(std::uint64_t kind, zel::ByteView bytes) {
    add(kind);
    add(bytes.size());
    for (const std::uint8_t byte : bytes.first(std::min<std::size_t>(bytes.size(), 64))) add(byte);
    for (const std::uint8_t byte : bytes.last(std::min<std::size_t>(bytes.size(), 64))) add(byte);
    delivered_ += bytes.size();
  }
  std::uint64_t value() const { return value_; }
  std::uint64_t delivered() const { return delivered_; }

 private:
  std::uint64_t value_ = 14'695'981'039'346'656'037u;
  std::uint64_t delivered_ = 0;
};

class Consumer final : public zel::PreviewConsumer, public zel::PhotoConsumer, public zel::FileReplyConsumer {
 public:
  explicit Consumer(Digest& digest) : digest_(digest) {}
  void appendVideoBytes(zel::ByteView bytes) override { digest_.add(1, bytes); }
  void appendAudioBytes(zel::ByteView bytes) override { digest_.add(2, bytes); }
  void parserData(zel::ByteView bytes) override { digest_.add(3, bytes); }
  void parserUCD(zel::ByteView bytes) override { digest_.add(9, bytes); }
  void replyBlockWithError(const ZELError&) override {}
  void setNextVideoTimestamp(std::int64_t time) override { digest_.add(static_cast<std::uint64_t>(time)); }
  void setNextAudioTimestamp(std::int64_t time) override { digest_.add(static_cast<std::uint64_t>(~time)); }
  void setImageWidth(std::int32_t) override {}
  void setImageHeight(std::int32_t) override {}
  void setFps(std::int32_t) override {}
  void resetPlayer() override {}

 private:
  Digest& digest_;
};

// One de-multiplexer and what it made of the stream.
class Receiver {
 public:
  explicit Receiver(bool inPlace) : inPlace_(inPlace) {
    parser_.setAccessory(&link_);
    parser_.setPreviewPlayer(consumer_);
    parser_.setPhotoParser(consumer_);
    parser_.setUcdFile(consumer_);
    when(0x800B, [](CameraDataParser&) {});
    when(0x8001, [](CameraDataParser& parser) { parser.clearData(); });
    when(0x8002, [](CameraDataParser& parser) {
      parser.clearData();
      parser.setIsNeedDataSynchronism(true);
    });
    parser_.setIsNeedDataSynchronism(true);
  }

  void read(zel::ByteView bytes) {
    taken_ += bytes.size();
    if (inPlace_) {
      // In memory of its own, whose end a sanitizer knows.
      const zel::Bytes copy(bytes.begin(), bytes.end());
      parser_.parserData(copy);
    } else {
      parser_.appendBytes(bytes.data(), bytes.size());
      parser_.parserData();
    }
    require(digest_.delivered() + parser_.data().size() <= taken_);
  }

  void requireSameAs(const Receiver& other) const {
    require(digest_.value() == other.digest_.value());
    require(std::ranges::equal(parser_.data(), other.parser_.data()));
    require(parser_.isNeedDataSynchronism() == other.parser_.isNeedDataSynchronism());
    require(link_.received == other.link_.received && link_.positionsLost == other.link_.positionsLost);
    require(link_.syncTimeCommands == other.link_.syncTimeCommands);
  }

 private:
  template <class Act>
  void when(std::int64_t code, Act act) {
    parser_.registerMsgParser(CameraMsgParser(14,
                                              [this, act](std::uint64_t, const std::optional<ZELData>& body, void*) {
                                                digest_.add(4, body ? body->bytes() : zel::ByteView());
                                                act(parser_);
                                              }),
                              code);
  }

  const bool inPlace_;
  RecordingLink link_;
  Digest digest_;
  std::uint64_t taken_ = 0;
  std::shared_ptr<Consumer> consumer_ = std::make_shared<Consumer>(digest_);
  CameraDataParser parser_;
};

class Stream {
 public:
  void step(Input& input) {
    const std::uint8_t choice = input.byte();
    switch (choice % 6) {
      case 0:
        return append(input.block());
      case 1:
        return append(dataSynchronismValue);
      case 2:
        return deliver(kReads[input.byte() % std::size(kReads)]);
      case 3:
        return appendMessage(static_cast<std::uint16_t>(0x8000 | input.byte() % 16), input.block());
      default:
        return appendFrame(choice, kLengths[input.byte() % std::size(kLengths)], input.byte());
    }
  }

  void end() { deliver(kReadBuffer); }

 private:
  void append(zel::ByteView bytes) {
    if (pending_.size() + bytes.size() + given_ > kMostBytes) return;
    pending_.insert(pending_.end(), bytes.begin(), bytes.end());
  }

  void appendMessage(std::uint16_t code, zel::ByteView body) { append(zel::messageFrame(code, body)); }

  void appendFrame(std::uint8_t choice, std::size_t length, std::uint8_t filler) {
    zel::Bytes frame;
    zel::appendLittleEndian(frame, static_cast<std::uint32_t>(length));
    zel::appendLittleEndian(frame, static_cast<std::uint16_t>(1 + choice % 10));
    frame.resize(length, filler);
    append(frame);
  }

  // All that stands behind one another, in reads of that size; the last may be shorter.
  void deliver(std::size_t size) {
    // Bytes one by one try nothing new after some thousands.
    const std::size_t read = std::max(size, pending_.size() / 4'096);
    given_ += pending_.size();
    for (zel::ByteView rest = pending_; !rest.empty(); rest = rest.subspan(std::min(read, rest.size()))) {
      copying_.read(rest.first(std::min(read, rest.size())));
      inPlace_.read(rest.first(std::min(read, rest.size())));
      inPlace_.requireSameAs(copying_);
    }
    pending_.clear();
  }

  zel::Bytes pending_;
  std::size_t given_ = 0;
  Receiver copying_{false};
  Receiver inPlace_{true};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  Stream stream;
  while (!input.empty()) stream.step(input);
  stream.end();
  return 0;
}

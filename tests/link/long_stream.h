#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "link/camera_data_parser.h"
#include "protocol/frame.h"
#include "tests/link/recording_consumers.h"

// Streams as long as a real session's reads.

namespace zel::test {

inline constexpr std::size_t kReadBuffer = 2'097'152;  // what a session reads at most at once

// Bytes that differ from their neighbours and, mostly, from those of another seed.
inline Bytes patterned(std::size_t size, std::uint32_t seed) {
  Bytes bytes(size);
  for (std::uint8_t& byte : bytes) {
    seed = seed * 1664525 + 1013904223;
    byte = static_cast<std::uint8_t>(seed >> 24);
  }
  return bytes;
}

inline Bytes frameOf(std::uint16_t type, const Bytes& payload) {
  Bytes frame;
  appendLittleEndian(frame, static_cast<std::uint32_t>(6 + payload.size()));
  appendLittleEndian(frame, type);
  return join(std::move(frame), payload);
}

// A frame of that length, its header included.
inline Bytes videoFrame(std::size_t length, std::uint32_t seed) { return frameOf(1, patterned(length - 6, seed)); }

// One payload as its consumer got it.
struct Delivered {
  Bytes payload;
  bool fromTheRead;  // not copied before
};

// A de-multiplexer that is read into as a session does it: one buffer, which the next read overwrites.
class LongReader {
 public:
  LongReader() {
    parser.setAccessory(&link);
    parser.setPreviewPlayer(consumer_);
    parser.setPhotoParser(consumer_);
  }

  void read(ByteView bytes) {
    std::ranges::copy(bytes, buffer_.begin());
    parser.parserData(ByteView(buffer_).first(bytes.size()));
    std::fill_n(buffer_.begin(), bytes.size(), std::uint8_t{0xEE});
  }

  // All of it, so many bytes a read.
  void readAll(ByteView stream, std::size_t size) {
    for (; !stream.empty(); stream = stream.subspan(std::min(size, stream.size()))) {
      read(stream.first(std::min(size, stream.size())));
    }
  }

  std::vector<Bytes> payloads() const {
    std::vector<Bytes> result;
    for (const Delivered& one : delivered) result.push_back(one.payload);
    return result;
  }
  Bytes held() const { return Bytes(parser.data().begin(), parser.data().end()); }
  LinkStatistics statistics() const {
    LinkStatistics result;
    parser.copyStatistics(result);
    return result;
  }

  std::vector<Delivered> delivered;
  std::function<void()> onFrame = [] {};  // inside the consumer, once the frame is listed
  RecordingLink link;
  CameraDataParser parser;

 private:
  class Consumer final : public PreviewConsumer, public PhotoConsumer {
   public:
    explicit Consumer(LongReader& reader) : reader_(reader) {}
    void appendVideoBytes(ByteView bytes) override { reader_.take(bytes); }
    void appendAudioBytes(ByteView bytes) override { reader_.take(bytes); }
    void parserData(ByteView bytes) override { reader_.take(bytes); }
    void replyBlockWithError(const ZELError&) override {}
    void setNextVideoTimestamp(std::int64_t) override {}
    void setNextAudioTimestamp(std::int64_t) override {}
    void setImageWidth(std::int32_t) override {}
    void setImageHeight(std::int32_t) override {}
    void setFps(std::int32_t) override {}
    void resetPlayer() override {}

   private:
    LongReader& reader_;
  };

  void take(ByteView payload) {
    constexpr std::less_equal<const std::uint8_t*> kNotBehind;
    const bool inside = kNotBehind(buffer_.data(), payload.data()) && kNotBehind(payload.data(), &buffer_.back());
    delivered.push_back({Bytes(payload.begin(), payload.end()), inside});
    onFrame();
  }

  Bytes buffer_ = Bytes(kReadBuffer + 1);
  std::shared_ptr<Consumer> consumer_ = std::make_shared<Consumer>(*this);
};

}  // namespace zel::test

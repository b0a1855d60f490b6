#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/wire.h"
#include "gateway/line/camera_line.h"
#include "protocol/frame.h"
#include "tests/link/bytes.h"

namespace zel::test {

// Frames as a test writes them, and as it looks at them.
inline Bytes frameOf(int type, const Bytes& payload) {
  Bytes frame;
  appendLittleEndian(frame, static_cast<std::uint32_t>(6 + payload.size()));
  appendLittleEndian(frame, static_cast<std::uint16_t>(type));
  return join(frame, payload);
}
inline Bytes message(int code, const Bytes& body = {}) {
  return frameOf(4, join(bytes({code & 0xFF, code >> 8}), body));
}
inline Bytes timeFrame(int flag, std::uint64_t time) {
  Bytes payload = bytes({flag});
  appendLittleEndian(payload, time);
  return frameOf(8, payload);
}
inline Bytes unit(int header, int second, std::size_t more = 0) {
  return join(bytes({0, 0, 0, 1, header, second}), repeated(more, 0x55));
}
inline const Bytes kSps = unit(0x67, 0x42), kPps = unit(0x68, 0xCE), kIdr = unit(0x65, 0x88), kSlice = unit(0x41, 0x9A);

inline std::vector<Bytes> framesIn(const Bytes& stream) {
  std::vector<Bytes> frames;
  std::size_t at = 0;
  while (stream.size() - at >= 6) {
    if (std::equal(kMarker.begin(), kMarker.begin() + 4, stream.begin() + static_cast<std::ptrdiff_t>(at))) {
      frames.push_back(kMarker);
      at += kMarker.size();
      continue;
    }
    const std::size_t size = loadLittleEndian<std::uint32_t>(stream.data() + at);
    if (size < 6 || stream.size() - at < size) break;
    frames.emplace_back(stream.begin() + static_cast<std::ptrdiff_t>(at),
                        stream.begin() + static_cast<std::ptrdiff_t>(at + size));
    at += size;
  }
  return frames;
}

// A line with its camera and its hosts in this test's hands, in time that the test moves.
class LineTest : public ::testing::Test {
 protected:
  using HostId = gateway::HostId;
  using milliseconds = std::chrono::milliseconds;

  static inline const Bytes kHeartbeat = timeFrame(0, 1);

  // A line whose camera has sent a frame.
  void flow() { camera(kHeartbeat); }

  HostId host() { return line_.admit(now_); }
  // A host that has got its marker.
  HostId syncedHost() {
    const HostId id = host();
    flow();
    asks(id, message(0x402E, kMarker));
    written(id);
    return id;
  }
  void asks(HostId id, const Bytes& stream) {
    gateway::HostFrames& frames = frames_[id];
    ByteView left(stream);
    while (true) {
      frames.admitFile();
      auto whole = frames.take(left);
      if (whole) line_.take(id, *std::move(whole), now_);
      if (!whole && !frames.awaitsAdmission()) return;
    }
  }
  void camera(const Bytes& frame) {
    line_.takeFrame(loadLittleEndian<std::uint16_t>(frame.data() + 4), ByteView(frame).subspan(6), now_);
  }
  void pass(milliseconds time) {
    const auto end = now_ + time;
    for (auto due = line_.due(); due && *due <= end; due = line_.due()) {
      now_ = std::max(now_, *due);
      line_.tick(now_);
    }
    now_ = end;
    line_.tick(now_);
  }

  // What a host is sent, since it was looked at last.
  std::vector<Bytes> written(HostId id, std::size_t most = SIZE_MAX) {
    Bytes all;
    auto& queue = line_.queueOf(id);
    while (!queue.empty() && all.size() < most) {
      std::array<ByteView, 4> pieces;
      const std::size_t count = queue.front(pieces);
      std::size_t size = 0;
      for (std::size_t i = 0; i < count && all.size() < most; ++i) {
        const auto piece = pieces[i].first(std::min(pieces[i].size(), most - all.size()));
        all.insert(all.end(), piece.begin(), piece.end());
        size += piece.size();
      }
      queue.written(size);
    }
    return framesIn(all);
  }
  // The same without times, which are the line's signs of life.
  std::vector<Bytes> told(HostId id) {
    auto frames = written(id);
    std::erase_if(frames, [](const Bytes& one) { return one.size() > 4 && one[4] == 8; });
    return frames;
  }
  // What the camera is sent, since it was looked at last.
  std::vector<Bytes> asked() {
    Bytes all;
    for (ByteView bytes = line_.toCamera(); !bytes.empty(); bytes = line_.toCamera()) {
      all.insert(all.end(), bytes.begin(), bytes.end());
      line_.wroteToCamera(bytes.size(), now_);
    }
    return framesIn(all);
  }

  gateway::LineTime now_{std::chrono::hours(1000)};
  gateway::CameraLine line_;
  std::map<HostId, gateway::HostFrames> frames_;
};

}  // namespace zel::test

#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <ZELTarkaSDK/MediaPacket.h>
#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

#include "platform/ffmpeg/h264_encoder.h"

namespace zel {

// Some grey pictures by the real encoder, and frames of silence, as a live stream would bring them.
class TestFilm {
 public:
  static constexpr std::int32_t kWidth = 64, kHeight = 32, kRate = 10;

  explicit TestFilm(int count, std::int32_t width = kWidth, std::int32_t height = kHeight)
      : headers{{}, {}, ZELData(std::vector<std::uint8_t>{0x11, 0x88}), width, height, true} {
    platform::LibavVideoEncoders encoders;
    const auto encoder = encoders.create({width, height, 100'000, kRate});
    if (!encoder || !encoder->open()) return;
    encoder->setSpsPpsCallback(
        [this](const std::uint8_t* sps, std::int32_t spsSize, const std::uint8_t* pps, std::int32_t ppsSize) {
          headers.sps = bytesOf(sps, spsSize);
          headers.pps = bytesOf(pps, ppsSize);
        });
    encoder->setNaluCallback([this](std::uint8_t* data, std::int32_t size, bool key, platform::MediaTime time) {
      data[0] = data[1] = data[2] = 0;
      data[3] = 1;
      packets.push_back({Track::video, key, time.value * 1000, bytesOf(data, size), std::nullopt});
      for (int i = 0; i < 4; ++i) addSilence();
    });
    for (int i = 0; i < count; ++i) encoder->encodeImage(grey(i, width, height), {i * 1000 / kRate, 1000});
  }

  StreamHeaders headers;
  std::vector<MediaPacket> packets;

 private:
  static ZELData bytesOf(const std::uint8_t* data, std::int32_t size) {
    return ZELData(std::span(data, static_cast<std::size_t>(size)));
  }

  static platform::PixelBufferRef grey(int number, std::int32_t width, std::int32_t height) {
    return platform::MemoryPixelBuffer::filled(width, height, static_cast<std::uint8_t>(10 * number), 128, 128);
  }

  // One AAC frame of a silent channel.
  void addSilence() {
    const std::vector<std::uint8_t> frame = {0x01, 0x40, 0x22, 0x80, 0xA3, 0x7F, 0xF8, 0x85,
                                             0x2D, 0x2D, 0x2D, 0x2D, 0x2D, 0x2D, 0x2E};
    packets.push_back({Track::audio, false, sound_++ * 1024 * 1'000'000 / 48'000, ZELData(frame), std::nullopt});
  }

  std::int64_t sound_ = 0;
};

}  // namespace zel

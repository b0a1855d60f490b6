#include "simulator/media/adts.h"

namespace zel::simulator {
namespace {

constexpr std::size_t kAdtsHeader = 7;
constexpr int kSampleRates[] = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                                22050, 16000, 12000, 11025, 8000,  7350};

bool isHeader(std::span<const std::uint8_t> bytes) {
  return bytes.size() >= kAdtsHeader && bytes[0] == 0xFF && (bytes[1] & 0xF6) == 0xF0;
}

std::size_t frameLength(std::span<const std::uint8_t> header) {
  return std::size_t{header[3] & 3u} << 11 | std::size_t{header[4]} << 3 | std::size_t{header[5]} >> 5;
}

}  // namespace

AudioTrack framesIn(std::span<const std::uint8_t> file) {
  AudioTrack track;
  const std::size_t rate = isHeader(file) ? file[2] >> 2 & 0x0F : std::size(kSampleRates);
  if (rate >= std::size(kSampleRates)) return track;
  track.sampleRate = kSampleRates[rate];
  while (isHeader(file)) {
    const std::size_t length = frameLength(file);
    if (length < kAdtsHeader || length > file.size()) break;
    track.frames.emplace_back(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
    file = file.subspan(length);
  }
  return track;
}

Bytes adtsHeader(std::size_t size) {
  const std::size_t length = size + kAdtsHeader;
  return {0xFF,
          0xF1,                                            // MPEG-4, no check sum
          0x4C,                                            // AAC-LC, 48 kHz
          static_cast<std::uint8_t>(0x80 | length >> 11),  // two channels
          static_cast<std::uint8_t>(length >> 3),
          static_cast<std::uint8_t>((length & 7) << 5 | 0x1F),  // a bit rate that varies
          0xFC};
}

}  // namespace zel::simulator

// The cutter on hostile bytes. The first byte chooses the size of the chunks, the rest is the stream. A chunk that
// begins with a start code brings out every byte held and given; any other chunk can only leave bytes out or hold them.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "media/h264_nalu_parser.h"
#include "media/start_code.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const std::size_t most = std::size_t{1} + data[0] % 64 * (data[0] % 64);
  orq::H264NaluParser parser;
  for (std::size_t at = 1; at < size; at += most) {
    const std::size_t length = std::min(most, size - at);
    const std::uint8_t* const chunk = data + at;
    const bool begins = length >= zel::kStartCodeSize && zel::isStartCode(chunk);
    const std::size_t before = static_cast<std::size_t>(parser.pendingSize()) + length;
    std::size_t after = 0;
    for (const auto& unit : parser.AppendData(chunk, static_cast<int>(length))) {
      after += static_cast<std::size_t>(unit->size());
    }
    after += static_cast<std::size_t>(parser.pendingSize());
    if (begins ? after != before : after > before) std::abort();
  }
  return 0;
}

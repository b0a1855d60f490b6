#pragma once

#include "media/media_buffer.h"
#include "tests/link/bytes.h"

namespace zel::test {

// A unit with its 4-byte start code.
inline Bytes unit(std::initializer_list<int> afterStartCode) {
  return join(bytes({0, 0, 0, 1}), bytes(afterStartCode));
}

inline Bytes bytesOf(const orq::MediaBuffer& buffer) { return Bytes(buffer.data(), buffer.data() + buffer.size()); }

// Units as the decoder takes them: the length, highest byte first, in place of the start code.
inline Bytes prefixed(std::initializer_list<int> afterLength) {
  return join(bytes({0, 0, 0, static_cast<int>(afterLength.size())}), bytes(afterLength));
}

}  // namespace zel::test

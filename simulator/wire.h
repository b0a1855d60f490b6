#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <vector>

// The camera's side of the wire. It is written apart from the framework's, so that one mistake cannot hide in both.

namespace zel::simulator {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::uint16_t kVideo = 1, kAudio = 2, kMessage = 4, kTimestamp = 8;
inline constexpr std::uint16_t kSyncData = 0x402E, kSyncTime = 0x4049;
inline constexpr std::uint16_t kReplyBit = 0x8000;
inline constexpr std::uint8_t kMarkerBytes[] = {0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA};

template <std::unsigned_integral T>
void put(Bytes& into, T value) {
  for (std::size_t shift = 0; shift < 8 * sizeof(T); shift += 8)
    into.push_back(static_cast<std::uint8_t>(value >> shift));
}

// A whole frame: length with its own six header bytes, data type, payload.
inline Bytes frame(std::uint16_t type, const Bytes& payload) {
  Bytes whole;
  put(whole, static_cast<std::uint32_t>(6 + payload.size()));
  put(whole, type);
  whole.insert(whole.end(), payload.begin(), payload.end());
  return whole;
}

// A message frame: the code stands before the body.
inline Bytes message(std::uint16_t code, const Bytes& body) {
  Bytes payload;
  put(payload, code);
  payload.insert(payload.end(), body.begin(), body.end());
  return frame(kMessage, payload);
}

}  // namespace zel::simulator

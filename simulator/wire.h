#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

// The camera's side of the wire. Deliberately separate from the framework's code, so that a mistake in one does not
// hide in the other.

namespace zel::simulator {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::uint16_t kVideo = 1, kAudio = 2, kPhoto = 3, kMessage = 4, kTimestamp = 8, kFile = 9;
inline constexpr std::uint16_t kSyncData = 0x402E, kSyncTime = 0x4049;
inline constexpr std::uint16_t kReplyBit = 0x8000;
inline constexpr std::size_t kNameField = 64;  // bytes of a file's name
inline constexpr std::uint8_t kMarkerBytes[] = {0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA};

template <std::unsigned_integral T>
void put(Bytes& into, T value) {
  for (std::size_t shift = 0; shift < 8 * sizeof(T); shift += 8)
    into.push_back(static_cast<std::uint8_t>(value >> shift));
}

// The numbers one after another.
template <std::unsigned_integral... T>
Bytes packed(T... numbers) {
  Bytes bytes;
  (put(bytes, numbers), ...);
  return bytes;
}

// The little-endian number at an offset. All its bytes must exist.
template <std::unsigned_integral T>
T numberAt(std::span<const std::uint8_t> bytes, std::size_t at) {
  std::uint64_t value = 0;
  for (std::size_t i = sizeof(T); i > 0; --i) value = (value << 8) | bytes[at + i - 1];
  return static_cast<T>(value);
}

inline Bytes copyOf(std::span<const std::uint8_t> bytes) { return {bytes.begin(), bytes.end()}; }

inline void add(Bytes& into, std::span<const std::uint8_t> more) { into.insert(into.end(), more.begin(), more.end()); }

// A field's text: up to the first zero byte, or all of it.
inline std::string textIn(std::span<const std::uint8_t> field) {
  std::string text;
  for (std::size_t i = 0; i < field.size() && field[i] != 0; ++i) text += static_cast<char>(field[i]);
  return text;
}

// Text as a field of that many bytes: zero-padded, or cut.
inline Bytes textField(const std::string& text, std::size_t size) {
  Bytes field(text.begin(), text.end());
  field.resize(size);
  return field;
}

// A whole frame: length with its own six header bytes, data type, payload.
inline Bytes frame(std::uint16_t type, const Bytes& payload) {
  Bytes whole = packed(static_cast<std::uint32_t>(6 + payload.size()), type);
  add(whole, payload);
  return whole;
}

// A message frame: the code, then the body.
inline Bytes message(std::uint16_t code, const Bytes& body) {
  Bytes payload = packed(code);
  add(payload, body);
  return frame(kMessage, payload);
}

}  // namespace zel::simulator

#pragma once

#include <charconv>
#include <cstdint>
#include <string_view>
#include <system_error>

namespace zel::simulator {

// Parses a whole text as a decimal number.
// Errors: false for anything else and outside the range.
template <class T>
bool readNumber(std::string_view text, T least, T most, T& value) {
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, value);
  return read.ec == std::errc() && read.ptr == end && value >= least && value <= most;
}

// A request code, as 0x402E or in decimal.
inline bool readCode(std::string_view text, std::uint16_t& code) {
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) text.remove_prefix(2);
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, code, hexadecimal ? 16 : 10);
  return !text.empty() && read.ec == std::errc() && read.ptr == end;
}

}  // namespace zel::simulator

#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>

#include <ZELTarkaSDK/ZELCameraUCD.h>

#include "tests/link/simulated_camera.h"

namespace zel::test {

// Bytes as hexadecimal digits; spaces are for the reader.
inline Bytes hex(std::string_view digits) {
  Bytes result;
  std::string pair;
  for (const char digit : digits) {
    if (digit == ' ') continue;
    pair += digit;
    if (pair.size() < 2) continue;
    result.push_back(static_cast<std::uint8_t>(std::stoi(pair, nullptr, 16)));
    pair.clear();
  }
  EXPECT_TRUE(pair.empty()) << "half a byte in " << digits;
  return result;
}

inline std::string hexText(ByteView bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

// A handler's value for comparing: numbers in decimal, text as it is, records and bytes as hexadecimal digits.
template <class T>
std::string shown(const T& value) {
  if constexpr (std::is_same_v<T, std::optional<std::string>>) {
    return value ? '"' + *value + '"' : "none";
  } else if constexpr (std::is_same_v<T, std::optional<ZELData>>) {
    return value ? hexText(value->bytes()) : "none";
  } else if constexpr (std::is_arithmetic_v<T>) {
    return std::to_string(value);
  } else if constexpr (requires { value.has_value(); }) {
    return value ? shown(*value) : "none";
  } else {
    return hexText(std::bit_cast<std::array<std::uint8_t, sizeof(T)>>(value));
  }
}

// Takes what a handler is called with: "ok" or "error 101", then the values.
struct Outcome {
  int calls = 0;
  std::string text;

  template <class... Values>
  void take(const std::optional<ZELError>& error, const Values&... values) {
    ++calls;
    text = error ? "error " + std::to_string(error->code) : "ok";
    if (error) {
      EXPECT_EQ(error->domain, "NSOSStatusErrorDomain");
    }
    ((text += ' ' + shown(values)), ...);
  }

  // Stands for a handler of any kind.
  template <class... Values>
  operator std::function<void(const std::optional<ZELError>&, Values...)>() {
    return [this](const std::optional<ZELError>& error, const std::remove_cvref_t<Values>&... values) {
      take(error, values...);
    };
  }
};

// A camera whose frames arrive, and its commands.
class CommandTest : public SimulatedCameraTest {
 protected:
  void SetUp() override { openAndSynchronise(); }

  ZELCameraUCD& ucd() { return stack.ucd(); }

  // What was written since the last time.
  Bytes written() {
    host.runUntilIdle();
    return link().takeWritten();
  }

  // A message frame of the camera: code and body.
  void answer(std::string_view codeAndBody) {
    Bytes frame;
    const Bytes payload = hex(codeAndBody);
    appendLittleEndian(frame, static_cast<std::uint32_t>(6 + payload.size()));
    send(join(frame, bytes({4, 0}), payload));
  }
};

}  // namespace zel::test

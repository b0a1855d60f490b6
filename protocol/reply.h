#pragma once

#include <optional>
#include <string_view>

#include <ZELTarkaSDK/ZELMessageFields.h>

#include "base/wire.h"
#include "protocol/field.h"

namespace zel {

// A decoded reply: refused (also when it is too short), or a success with or without a dictionary.
struct Decoded {
  bool refused = false;
  std::optional<ZELMessageFields> fields;

  static Decoded refusal() { return {true, std::nullopt}; }
  static Decoded success(std::optional<ZELMessageFields> fields = std::nullopt) { return {false, std::move(fields)}; }
};

// How a family's replies are decoded.
struct Reply {
  enum class Form {
    none,    // the camera does not reply
    flag,    // a byte, 0 for a refusal, then the fields
    value,   // only the fields: every reply is a success
    custom,  // decoded by the function
  };

  Form form = Form::none;
  FieldList fields;
  Decoded (*custom)(ByteView body) = nullptr;
  std::string_view description;  // of a custom one, for people
};

inline constexpr Reply silent{};

template <class... Fields>
consteval Reply flag(Fields... fields) {
  return {Reply::Form::flag, FieldList{fields...}, nullptr, {}};
}
template <class... Fields>
consteval Reply value(Fields... fields) {
  return {Reply::Form::value, FieldList{fields...}, nullptr, {}};
}
consteval Reply custom(Decoded (*decode)(ByteView), std::string_view description) {
  return {Reply::Form::custom, {}, decode, description};
}

// Bytes after the last field are ignored.
Decoded decodeReply(const Reply& reply, ByteView body);

// A capture: file time u32, file size u64, and a UTF-8 name, present even if empty. No flag.
Decoded decodeCaptureResult(ByteView body);

// A text file: flag, and the camera's own code, which a refusal carries beside the error.
Decoded decodeTextFileResult(ByteView body);

// Every reply is a success.
Decoded decodeAnything(ByteView body);

}  // namespace zel

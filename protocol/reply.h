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
    none,   // the camera does not reply
    flag,   // a byte, 0 for a refusal, then the fields
    value,  // only the fields: every reply is a success
  };

  Form form = Form::none;
  FieldList fields;
  Decoded (*decode)(ByteView body) = nullptr;  // in the place of the form's own reading
  std::string_view note = {};                  // what is special then, for people
  bool valuesWithRefusal = false;              // a refusal carries the fields, too
};

inline constexpr Reply unanswered{};

template <class... Fields>
consteval Reply flag(Fields... fields) {
  return {Reply::Form::flag, FieldList{fields...}};
}
template <class... Fields>
consteval Reply value(Fields... fields) {
  return {Reply::Form::value, FieldList{fields...}};
}
consteval Reply custom(Reply form, Decoded (*decode)(ByteView), std::string_view note) {
  return {form.form, form.fields, decode, note};
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

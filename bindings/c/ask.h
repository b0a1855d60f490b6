#pragma once

#include <ZELTarkaSDK/Camera.h>
#include <ZELTarkaSDK/zel_status.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "bindings/c/callbacks.h"
#include "bindings/c/camera_object.h"
#include "bindings/c/failure.h"
#include "bindings/c/records.h"
#include "bindings/c/sized.h"
#include "bindings/c/text.h"

// Makes a request of the camera, and waits for it.

namespace zel::c {

inline void checkGiven(const void* given, std::string_view name) {
  if (given == nullptr) refuse(std::string(name) + " is NULL");
}

// A record that is given in.
template <class Record>
auto recordIn(const Record* record, std::string_view name) {
  return wire(taken(record, name));
}

// Where a result goes: check() before the camera is asked, put() afterwards.

struct Nothing {
  void check() const {}
};

template <class Number>
class NumberOut {
 public:
  explicit NumberOut(Number* out) : out_(out) {}
  void check() const { checkGiven(out_, "out"); }
  void put(Number value) const { *out_ = value; }

 private:
  Number* const out_;
};

class TextOut {
 public:
  explicit TextOut(char** out) : out_(out) {}
  void check() const { checkGiven(out_, "out"); }
  void put(const std::optional<std::string>& text) const { *out_ = textOut(text); }

 private:
  char** const out_;
};

class BytesOut {
 public:
  BytesOut(std::uint8_t** out, std::size_t* length) : out_(out), length_(length) {}
  void check() const {
    checkGiven(out_, "out");
    checkGiven(length_, "length");
  }
  void put(const std::optional<ZELData>& bytes) const {
    *out_ = bytesOut(bytes);
    *length_ = bytes ? bytes->size() : 0;
  }

 private:
  std::uint8_t** const out_;
  std::size_t* const length_;
};

// native: makes the struct of the result.
template <class Record, class Native>
class RecordOut {
 public:
  RecordOut(Record* out, Native native) : out_(out), native_(native) {}
  void check() const { checkSized(out_, "out"); }
  template <class Value>
  void put(const Value& value) const {
    give(out_, native_(value));
  }

 private:
  Record* const out_;
  const Native native_;
};

// begin: makes the request of a Camera, with RequestOptions.
template <class Out, class Begin>
zel_status ask(zel_camera* camera, int time_limit, zel_error* error, const Out& out, const Begin& begin) {
  return guarded(error, [&] {
    out.check();
    const RequestOptions options = withTimeLimit(time_limit);
    checkMayWait();
    auto pending = objectOf<CameraObject>(camera)->with([&](Camera& asked) { return begin(asked, options); });
    auto result = pending.get();
    if constexpr (std::is_void_v<typename decltype(result)::Value>) {
      valueOf(std::move(result));
    } else {
      out.put(valueOf(std::move(result)));
    }
  });
}

}  // namespace zel::c

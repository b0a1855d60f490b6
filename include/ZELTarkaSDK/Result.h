#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// Why a call on a camera gave nothing.
struct ZEL_EXPORT CameraError {
  enum class Reason {
    noCamera,     // none is attached, or not the one that was asked for
    inUse,        // another process has it
    silent,       // it is attached and sends nothing
    lost,         // the link is down; also where it went down while the call waited
    refused,      // the camera refused, or its answer cannot be read
    oldFirmware,  // the camera's firmware is too old
    timeLimit,    // no answer within the time limit
    cancelled,    // the caller's stop token, or cancel()
    closed,       // the camera object or the subscription has ended
    invalid,      // the call itself is wrong: an argument, or a wait for oneself
    media,        // pictures or sound cannot be had, decoded, stitched or encoded
    platform,     // the host's system refused: a folder, a thread, memory
  };

  Reason reason = Reason::closed;
  std::string message;      // a sentence for people: what was wrong and, where it helps, what to do
  std::string domain = {};  // of the interface's error, see ZELError.h; empty where it has none
  std::int64_t code = 0;    // in that domain

  bool operator==(const CameraError&) const = default;
};

namespace detail {
// Ends the process with a sentence: the program took a value that is not there.
[[noreturn]] inline void noValue(const CameraError& error) {
  std::fprintf(stderr, "zel::Result: the value of a failed call was used; it failed because: %s\n",
               error.message.c_str());
  std::abort();
}
}  // namespace detail

// A value, or why there is none. Nothing here throws.
//
// Errors: the value of a failed result ends the process with the error's sentence.
template <class T>
class [[nodiscard]] Result {
 public:
  using Value = T;

  Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
  Result(CameraError error) : state_(std::in_place_index<1>, std::move(error)) {}

  bool hasValue() const { return state_.index() == 0; }
  explicit operator bool() const { return hasValue(); }

  T& value() & { return check(), std::get<0>(state_); }
  const T& value() const& { return check(), std::get<0>(state_); }
  T&& value() && { return check(), std::get<0>(std::move(state_)); }
  T& operator*() & { return value(); }
  const T& operator*() const& { return value(); }
  T&& operator*() && { return std::move(*this).value(); }
  T* operator->() { return &value(); }
  const T* operator->() const { return &value(); }
  T valueOr(T other) && { return hasValue() ? std::get<0>(std::move(state_)) : std::move(other); }

  // Of a failed result only.
  const CameraError& error() const { return std::get<1>(state_); }

 private:
  void check() const {
    if (!hasValue()) detail::noValue(error());
  }
  std::variant<T, CameraError> state_;
};

// The same for a call that has nothing to give.
template <>
class [[nodiscard]] Result<void> {
 public:
  using Value = void;

  Result() = default;
  Result(CameraError error) : error_(std::move(error)) {}

  bool hasValue() const { return !error_; }
  explicit operator bool() const { return hasValue(); }
  void value() const {
    if (error_) detail::noValue(*error_);
  }
  const CameraError& error() const { return *error_; }

 private:
  std::optional<CameraError> error_;
};

}  // namespace zel

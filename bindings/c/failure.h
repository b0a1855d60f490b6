#pragma once

#include <ZELTarkaSDK/Result.h>
#include <ZELTarkaSDK/zel_status.h>

#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <string_view>

// What a call in C tells of its end. Inside this folder a call is refused by an exception, which ends in guarded(): so
// no function has to pass the caller's error on.

namespace zel::c {

// Why a call is refused or has failed.
struct Failure {
  CameraError error;
};

[[noreturn]] void fail(CameraError error);
// A call that is wrong in itself.
[[noreturn]] void refuse(std::string why);

zel_status statusOf(CameraError::Reason reason);

// Fills what was given to tell an error. Takes no memory.
void tell(zel_error* error, zel_status status, std::string_view message, std::string_view domain = {},
          std::int64_t code = 0) noexcept;
zel_status tellFailure(zel_error* error, const CameraError& why) noexcept;

// Whether an error can be told there: nowhere, or in a struct of a size that is one.
bool isUsable(const zel_error* error) noexcept;

// Makes the call, and tells how it has ended. Nothing is thrown out of it.
template <class Call>
zel_status guarded(zel_error* error, Call&& call) noexcept {
  if (!isUsable(error)) return ZEL_INVALID;
  try {
    call();
    tell(error, ZEL_OK, {});
    return ZEL_OK;
  } catch (const Failure& failure) {
    return tellFailure(error, failure.error);
  } catch (const std::bad_alloc&) {
    tell(error, ZEL_PLATFORM, "there is no memory for this call");
  } catch (const std::exception& fault) {
    tell(error, ZEL_PLATFORM, fault.what());
  }
  return ZEL_PLATFORM;
}

// The value of a result; its error ends the call.
template <class T>
T valueOf(Result<T> result) {
  if (!result) fail(result.error());
  if constexpr (!std::is_void_v<T>) return *std::move(result);
}

}  // namespace zel::c

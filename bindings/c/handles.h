#pragma once

#include <ZELTarkaSDK/zel_status.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace zel::c {

// What a handle stands for; the low bits of its number.
enum class Kind : std::uintptr_t { camera = 1, stream, subscription, photo, picture, packet, call, stitcher };

// All objects that programs hold. A handle is a number that is never given again and points nowhere, so that any wrong
// one is found, also one that another thread has just freed.
//
// Thread: any thread.
class Handles {
 public:
  // Never destroyed: programs may call until their very end.
  static Handles& all();

  void* add(Kind kind, std::shared_ptr<void> object);
  // Errors: refused where it is NULL or of another kind; ZEL_CLOSED where it was taken.
  std::shared_ptr<void> find(Kind kind, const void* handle);
  // The last to find it.
  std::shared_ptr<void> take(Kind kind, const void* handle);

 private:
  [[noreturn]] void failFor(Kind kind, std::uintptr_t number) const;

  std::mutex mutex_;
  std::unordered_map<std::uintptr_t, std::shared_ptr<void>> objects_;
  std::uintptr_t next_ = 1;
};

// The handle's struct, and its kind, of each class: Handle and kKind.
template <class Object>
typename Object::Handle* newHandle(std::shared_ptr<Object> object) {
  return static_cast<typename Object::Handle*>(Handles::all().add(Object::kKind, std::move(object)));
}

template <class Object>
std::shared_ptr<Object> objectOf(const typename Object::Handle* handle) {
  return std::static_pointer_cast<Object>(Handles::all().find(Object::kKind, handle));
}

template <class Object>
std::shared_ptr<Object> takeObject(const typename Object::Handle* handle) {
  return std::static_pointer_cast<Object>(Handles::all().take(Object::kKind, handle));
}

}  // namespace zel::c

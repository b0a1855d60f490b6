#include "bindings/c/handles.h"

#include <pthread.h>

#include <string>
#include <utility>

#include "bindings/c/failure.h"

namespace zel::c {
namespace {

constexpr std::uintptr_t kKinds = 16;
constexpr const char* kWords[] = {"",        "camera", "stream", "subscription", "photo",
                                  "picture", "packet", "call",   "stitcher"};

std::string wordFor(Kind kind) { return kWords[static_cast<std::size_t>(kind)]; }
std::uintptr_t numberOf(const void* handle) { return reinterpret_cast<std::uintptr_t>(handle); }

}  // namespace

Handles& Handles::all() {
  static auto* const handles = [] {
    auto* const made = new Handles;
    // A child process that opens a camera of its own finds no thread of its parent in the middle of a call here.
    pthread_atfork([] { all().mutex_.lock(); }, [] { all().mutex_.unlock(); }, [] { all().mutex_.unlock(); });
    return made;
  }();
  return *handles;
}

void* Handles::add(Kind kind, std::shared_ptr<void> object) {
  const std::lock_guard lock(mutex_);
  const std::uintptr_t number = next_ * kKinds + static_cast<std::uintptr_t>(kind);
  objects_.emplace(number, std::move(object));
  ++next_;
  return reinterpret_cast<void*>(number);  // NOLINT(performance-no-int-to-ptr): it is no address, and is never followed
}

std::shared_ptr<void> Handles::find(Kind kind, const void* handle) {
  const std::lock_guard lock(mutex_);
  const auto found = objects_.find(numberOf(handle));
  if (found == objects_.end() || numberOf(handle) % kKinds != static_cast<std::uintptr_t>(kind))
    failFor(kind, numberOf(handle));
  return found->second;
}

std::shared_ptr<void> Handles::take(Kind kind, const void* handle) {
  auto object = find(kind, handle);
  const std::lock_guard lock(mutex_);
  // Two threads may have found it.
  if (objects_.erase(numberOf(handle)) == 0) failFor(kind, numberOf(handle));
  return object;
}

void Handles::failFor(Kind kind, std::uintptr_t number) const {
  const std::string word = wordFor(kind);
  if (number == 0) refuse("the " + word + " is NULL");
  const bool wasGiven = number / kKinds > 0 && number / kKinds < next_;
  if (!wasGiven || number % kKinds != static_cast<std::uintptr_t>(kind)) refuse("this handle is no " + word);
  const std::string how = kind == Kind::camera ? "closed" : "freed";
  fail({CameraError::Reason::closed, "the " + word + " was " + how});
}

}  // namespace zel::c

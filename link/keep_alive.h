#pragma once

#include <memory>
#include <utility>

namespace zel {

// A reference to the stack that an object belongs to, held while the object makes a callback, because the host may
// destroy the stack inside it. An object without a stack is destroyed by its owner outside callbacks.
//
// Thread: hold() on any thread; set before the object is used.
class KeepAlive {
 public:
  KeepAlive() = default;
  explicit KeepAlive(std::weak_ptr<void> whole) : whole_(std::move(whole)), isPart_(true) {}

  // Null when the stack has already been destroyed.
  std::shared_ptr<void> hold() const {
    static char nobody;
    return isPart_ ? whole_.lock() : std::shared_ptr<void>(std::shared_ptr<void>(), &nobody);
  }

  // Wraps a call so that it runs only while the stack exists, and keeps the stack alive. For observers and timers.
  template <class Call>
  auto during(Call call) const {
    return [keepAlive = *this, call = std::move(call)](const auto&... args) {
      if (const auto held = keepAlive.hold()) call(args...);
    };
  }

 private:
  std::weak_ptr<void> whole_;
  bool isPart_ = false;
};

}  // namespace zel

#pragma once

#include <memory>
#include <utility>

namespace zel {

// Whom an object is part of, to be held while the object calls out: the host may let go of the whole inside such a
// call. A stack names itself to its parts. An object that belongs to nobody is destroyed by its owner, outside its
// calls.
//
// Thread: hold() on any thread; set before the object is used.
class KeepAlive {
 public:
  KeepAlive() = default;
  explicit KeepAlive(std::weak_ptr<void> whole) : whole_(std::move(whole)), isPart_(true) {}

  // Null where the whole has gone already.
  std::shared_ptr<void> hold() const {
    static char nobody;
    return isPart_ ? whole_.lock() : std::shared_ptr<void>(std::shared_ptr<void>(), &nobody);
  }

  // The same call, made only while the whole is there, and with the whole held. For observers and timers.
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

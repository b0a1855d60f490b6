#pragma once

#include <unistd.h>

#include <utility>

namespace zel::platform {

// Owns a file descriptor.
class UniqueDescriptor {
 public:
  UniqueDescriptor() = default;
  explicit UniqueDescriptor(int descriptor) : descriptor_(descriptor) {}
  UniqueDescriptor(UniqueDescriptor&& other) noexcept : descriptor_(other.release()) {}
  UniqueDescriptor& operator=(UniqueDescriptor&& other) noexcept {
    reset(other.release());
    return *this;
  }
  ~UniqueDescriptor() { reset(); }

  int get() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }
  int release() { return std::exchange(descriptor_, -1); }

  void reset(int descriptor = -1) {
    const int old = std::exchange(descriptor_, descriptor);
    if (old >= 0) close(old);
  }

 private:
  int descriptor_ = -1;
};

}  // namespace zel::platform

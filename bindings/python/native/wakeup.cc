#include "bindings/python/native/wakeup.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <utility>

namespace zel::python {

Wakeup::Wakeup() : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

Wakeup::~Wakeup() {
  if (isUsable()) ::close(descriptor_);
}

void Wakeup::tell(std::uint64_t call) {
  const std::lock_guard lock(mutex_);
  calls_.push_back(call);
  if (calls_.size() == 1) eventfd_write(descriptor_, 1);
}

std::vector<std::uint64_t> Wakeup::drain() {
  const std::lock_guard lock(mutex_);
  eventfd_t count = 0;
  eventfd_read(descriptor_, &count);
  return std::exchange(calls_, {});
}

}  // namespace zel::python

#include "bindings/c/dispatcher.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include "bindings/c/failure.h"

namespace zel::c {

Dispatcher::Dispatcher() : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (descriptor_ < 0)
    fail({CameraError::Reason::platform, std::string("no descriptor for the callbacks: ") + std::strerror(errno)});
}

Dispatcher::~Dispatcher() { ::close(descriptor_); }

void Dispatcher::post(std::function<void()> call) {
  const std::lock_guard lock(mutex_);
  if (isClosed_) return;
  calls_.push_back(std::move(call));
  if (calls_.size() == 1) eventfd_write(descriptor_, 1);
  changed_.notify_all();
}

void Dispatcher::markEmpty() {
  eventfd_t count = 0;
  eventfd_read(descriptor_, &count);
}

// Runs the first without the lock; false where there is none.
bool Dispatcher::runOne(std::unique_lock<std::mutex>& lock) {
  if (calls_.empty()) return false;
  auto call = std::move(calls_.front());
  calls_.pop_front();
  if (calls_.empty()) markEmpty();
  lock.unlock();
  call();
  call = nullptr;
  lock.lock();
  return true;
}

void Dispatcher::run() {
  std::unique_lock lock(mutex_);
  // Those that come meanwhile wait for the next time, so that a program's loop gets its turn.
  for (std::size_t left = calls_.size(); left > 0 && runOne(lock);) --left;
}

bool Dispatcher::runUntil(const std::function<bool()>& isDone) {
  std::unique_lock lock(mutex_);
  while (!isDone()) {
    if (isClosed_) return false;
    if (!runOne(lock)) changed_.wait(lock);
  }
  return true;
}

void Dispatcher::notify() {
  const std::lock_guard lock(mutex_);
  changed_.notify_all();
}

void Dispatcher::close() {
  std::deque<std::function<void()>> calls;  // destroyed without the lock
  const std::lock_guard lock(mutex_);
  isClosed_ = true;
  if (!calls_.empty()) markEmpty();
  calls.swap(calls_);
  changed_.notify_all();
}

}  // namespace zel::c

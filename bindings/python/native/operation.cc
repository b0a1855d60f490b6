#include "bindings/python/native/operation.h"

#include <pthread.h>

#include <condition_variable>
#include <ctime>
#include <system_error>
#include <thread>
#include <utility>

namespace zel::python {
namespace {

constexpr std::int64_t kSecond = 1'000'000'000;

std::atomic<std::uint64_t> nextOperation = 1;
std::atomic<int> generation = 0;

timespec after(std::int64_t nanoseconds) {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  const std::int64_t sum = time.tv_nsec + nanoseconds;
  time.tv_sec += sum / kSecond;
  time.tv_nsec = sum % kSecond;
  return time;
}

// Threads of this module that are under way. Never destroyed: one may end after the process has begun to.
struct Threads {
  std::mutex mutex;
  std::condition_variable changed;
  int count = 0;
};
Threads& threads() {
  static auto* const all = new Threads;
  return *all;
}

void leaveThread() {
  const std::lock_guard lock(threads().mutex);
  --threads().count;
  threads().changed.notify_all();
}

}  // namespace

Operation::Operation(std::shared_ptr<Wakeup> wakeup) : id_(nextOperation++), wakeup_(std::move(wakeup)) {
  sem_init(&news_, 0, 0);
  error_.size = sizeof error_;
}

Operation::~Operation() { sem_destroy(&news_); }

void Operation::onDone(void* user, zel_status, const zel_error* error) {
  static_cast<Operation*>(user)->end(error->status, *error);
}

void Operation::onProgress(void* user, std::uint64_t done, std::uint64_t total) {
  auto* const self = static_cast<Operation*>(user);
  {
    const std::lock_guard lock(self->mutex_);
    self->progress_ = {done, total};
  }
  self->tell();
}

void Operation::end(zel_status status, const zel_error& error) {
  error_ = error;
  error_.status = status;
  isDone_ = true;
  tell();
}

void Operation::tell() {
  if (wakeup_) wakeup_->tell(id_);
  sem_post(&news_);
}

void Operation::wait(std::int64_t nanoseconds) {
  const timespec end = after(nanoseconds);
  sem_clockwait(&news_, CLOCK_MONOTONIC, &end);
}

Operation::News Operation::news() {
  {
    const std::lock_guard lock(mutex_);
    if (progress_) return News::progress;
  }
  return isDone_ ? News::done : News::none;
}

std::pair<std::uint64_t, std::uint64_t> Operation::progress() {
  const std::lock_guard lock(mutex_);
  return std::exchange(progress_, std::nullopt).value_or(std::pair<std::uint64_t, std::uint64_t>());
}

void Operation::cancel() {
  if (call_ != nullptr) zel_call_cancel(call_, nullptr);
}

void Operation::giveUp() {
  if (call_ != nullptr) zel_call_free(std::exchange(call_, nullptr));
}

// -- Threads of this module

bool runAside(const std::shared_ptr<Operation>& operation, std::function<zel_status(zel_error*)> work) {
  {
    const std::lock_guard lock(threads().mutex);
    ++threads().count;
  }
  try {
    std::thread([kept = operation, work = std::move(work)]() mutable {
      zel_error error{};
      error.size = sizeof error;
      const zel_status status = work(&error);
      work = nullptr;
      kept->end(status, error);
      kept.reset();
      leaveThread();
    }).detach();
  } catch (const std::system_error&) {
    leaveThread();
    return false;
  }
  return true;
}

bool waitForThreads(std::int64_t nanoseconds) {
  std::unique_lock lock(threads().mutex);
  return threads().changed.wait_for(lock, std::chrono::nanoseconds(nanoseconds), [] { return threads().count == 0; });
}

// -- Child processes

int processGeneration() { return generation; }

void watchForks() {
  // A fork finds no thread in the middle of its end; the child has none of them.
  pthread_atfork([] { threads().mutex.lock(); }, [] { threads().mutex.unlock(); },
                 [] {
                   ++generation;
                   threads().count = 0;
                   threads().mutex.unlock();
                 });
}

}  // namespace zel::python

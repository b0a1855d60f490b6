#pragma once

#include <ZELTarkaSDK/zel.h>
#include <semaphore.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "bindings/python/native/python.h"
#include "bindings/python/native/wakeup.h"

namespace zel::python {

// A call that waits: what the camera's threads tell of it, which never take the interpreter's lock, and what Python
// waits for.
//
// Thread: any thread; what takes or gives a PyObject needs the interpreter's lock.
class Operation {
 public:
  enum class News { none, progress, done };

  // wakeup: null where a thread waits.
  explicit Operation(std::shared_ptr<Wakeup> wakeup);
  // The call is given up before, with giveUp().
  virtual ~Operation();
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

  std::uint64_t id() const { return id_; }

  // The library's callbacks, with the operation as `user`.
  static void onDone(void* user, zel_status status, const zel_error* error);
  static void onProgress(void* user, std::uint64_t done, std::uint64_t total);

  // The end, for a call that runs on a thread of this module.
  void end(zel_status status, const zel_error& error);

  // Waits for news, or until the time is over. The caller has released the interpreter's lock. A signal ends it too.
  void wait(std::int64_t nanoseconds);
  // What is new since the last time; the end stays new.
  News news();
  bool isDone() const { return isDone_; }
  std::pair<std::uint64_t, std::uint64_t> progress();

  // Ends the library's call with ZEL_CANCELLED.
  void cancel();
  // Ends the library's call, which writes nothing here afterwards.
  void giveUp();

  // The result, once; the call has ended well.
  virtual PyObject* take() = 0;
  // Frees a result that nobody has taken.
  virtual void dispose() = 0;

  zel_status status() const { return error_.status; }
  const zel_error& error() const { return error_; }

  // Where the library is to put the handle of its call.
  zel_call** call() { return &call_; }

 private:
  void tell();

  const std::uint64_t id_;
  const std::shared_ptr<Wakeup> wakeup_;
  sem_t news_;
  zel_call* call_ = nullptr;
  zel_error error_{};  // set before isDone_
  std::atomic<bool> isDone_ = false;
  std::mutex mutex_;
  std::optional<std::pair<std::uint64_t, std::uint64_t>> progress_;
};

// Runs it on a thread of its own, which keeps the operation, and tells its end.
//
// Errors: false where the system has no thread left.
bool runAside(const std::shared_ptr<Operation>& operation, std::function<zel_status(zel_error*)> work);
// Waits until all such threads have ended, or for the time.
bool waitForThreads(std::int64_t nanoseconds);

// Grows in each child process.
int processGeneration();
void watchForks();

}  // namespace zel::python

#include "platform/render/row_workers.h"

#include <algorithm>
#include <new>
#include <system_error>
#include <utility>

namespace zel::render {
namespace {

int threadCount(int wanted) {
  const int most = wanted > 0 ? wanted : static_cast<int>(std::thread::hardware_concurrency());
  return std::clamp(most, 1, RowWorkers::kMost);
}

}  // namespace

RowWorkers::RowWorkers(int threads) {
  const auto helpers = static_cast<std::size_t>(threadCount(threads) - 1);
  threads_.reserve(helpers);
  try {
    for (std::size_t worker = 1; worker <= helpers; ++worker) threads_.emplace_back([this, worker] { work(worker); });
  } catch (const std::system_error&) {
    // No more threads can be started: the existing ones do the work.
  } catch (const std::bad_alloc&) {
    // No memory for a thread.
  }
}

RowWorkers::~RowWorkers() {
  {
    const MutexLock lock(mutex_);
    closed_ = true;
    wake_.notify_all();
  }
  for (std::thread& thread : threads_) thread.join();
}

void RowWorkers::start(std::size_t tasks, Job job) {
  nextTask_.store(0, std::memory_order_relaxed);
  {
    const MutexLock lock(mutex_);
    job_ = job;
    tasks_ = tasks;
    open_ = true;
    ++round_;
    wake_.notify_all();
  }
  takeTasks(job, tasks, 0);
  if (const std::exception_ptr fault = finish()) std::rethrow_exception(fault);
}

// The job is on the caller's stack: the caller must not return before the last worker has left the job.
std::exception_ptr RowWorkers::finish() {
  const MutexLock lock(mutex_);
  open_ = false;
  while (busy_ != 0) done_.wait(mutex_);
  return std::exchange(fault_, nullptr);
}

void RowWorkers::work(std::size_t worker) {
  std::size_t seen = 0;
  while (true) {
    Job job;
    std::size_t tasks = 0;
    {
      const MutexLock lock(mutex_);
      while ((round_ == seen || !open_) && !closed_) wake_.wait(mutex_);
      if (closed_) return;
      seen = round_;
      ++busy_;
      job = job_;
      tasks = tasks_;
    }
    takeTasks(job, tasks, worker);
    const MutexLock lock(mutex_);
    if (--busy_ == 0) done_.notify_one();
  }
}

// A task that throws ends the whole job, because its result would be incomplete.
void RowWorkers::takeTasks(const Job& job, std::size_t tasks, std::size_t worker) {
  try {
    for (std::size_t index; (index = nextTask_.fetch_add(1, std::memory_order_relaxed)) < tasks;)
      job.call(job.context, index, worker);
  } catch (...) {
    nextTask_.store(tasks, std::memory_order_relaxed);
    const MutexLock lock(mutex_);
    if (!fault_) fault_ = std::current_exception();
  }
}

}  // namespace zel::render

#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <thread>
#include <vector>

#include "base/mutex.h"

namespace zel::render {

// A fixed set of threads that share the tasks of one job at a time.
// Owner:  destroy it on the thread that runs jobs, or after the last job.
// Thread: one job at a time.
class RowWorkers {
 public:
  static constexpr int kMost = 64;

  // threads: including the caller; 0: one for each processor. If the system provides fewer threads, jobs take longer.
  explicit RowWorkers(int threads);
  ~RowWorkers();
  RowWorkers(const RowWorkers&) = delete;
  RowWorkers& operator=(const RowWorkers&) = delete;

  std::size_t count() const { return threads_.size() + 1; }

  // Calls task(index, worker) for each index below `tasks`, in any order, on the caller and the workers, and returns
  // when all have returned; worker is below count(), and no two calls at a time have the same. Allocates nothing.
  // Errors: the first exception of a task is rethrown to the caller once no task runs any more; tasks that have not
  //         begun by then are skipped.
  template <class Task>
  void run(std::size_t tasks, const Task& task) {
    start(tasks, {&task, [](const void* context, std::size_t index, std::size_t worker) {
                    (*static_cast<const Task*>(context))(index, worker);
                  }});
  }

 private:
  struct Job {
    const void* context = nullptr;
    void (*call)(const void* context, std::size_t index, std::size_t worker) = nullptr;
  };

  void start(std::size_t tasks, Job job) ZEL_EXCLUDES(mutex_);
  void work(std::size_t worker) ZEL_EXCLUDES(mutex_);
  void takeTasks(const Job& job, std::size_t tasks, std::size_t worker) ZEL_EXCLUDES(mutex_);
  std::exception_ptr finish() ZEL_EXCLUDES(mutex_);

  std::atomic<std::size_t> nextTask_{0};
  Mutex mutex_;
  std::condition_variable_any wake_, done_;
  Job job_ ZEL_GUARDED_BY(mutex_);
  std::size_t tasks_ ZEL_GUARDED_BY(mutex_) = 0;
  std::size_t round_ ZEL_GUARDED_BY(mutex_) = 0;  // counts the jobs
  // On a busy machine a thread may wake when no task is left; it is not waited for, and takes no part.
  bool open_ ZEL_GUARDED_BY(mutex_) = false;         // threads may still join the round
  std::size_t busy_ ZEL_GUARDED_BY(mutex_) = 0;      // threads in the round
  std::exception_ptr fault_ ZEL_GUARDED_BY(mutex_);  // the round's first exception
  bool closed_ ZEL_GUARDED_BY(mutex_) = false;
  std::vector<std::thread> threads_;  // last: destroyed before the members that they use
};

}  // namespace zel::render

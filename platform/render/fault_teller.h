#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "base/mutex.h"

namespace zel::render {

// Receives messages about faults, one sentence each.
// Thread: any thread, several at a time.
using Diagnostics = std::function<void(const std::string& fault)>;

// Reports each fault once, since most would recur with every picture, and only the first kMostFaults.
// Thread: any thread.
class FaultTeller {
 public:
  static constexpr std::size_t kMostFaults = 16;

  // tell: may be empty.
  explicit FaultTeller(Diagnostics tell) : tell_(std::move(tell)) {}

  void tell(const std::string& fault) ZEL_EXCLUDES(mutex_) {
    if (isNew(fault) && tell_) tell_(fault);
  }

 private:
  bool isNew(const std::string& fault) ZEL_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    if (told_.size() == kMostFaults || std::ranges::count(told_, fault) != 0) return false;
    told_.push_back(fault);
    return true;
  }

  const Diagnostics tell_;
  Mutex mutex_;
  std::vector<std::string> told_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel::render

#pragma once

#include <ZELTarkaSDK/Result.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "base/mutex.h"

namespace zel {

// Requests of one kind, one after the other: the camera's answers do not say which request they belong to, so that a
// second one under way would take the first one's answer.
//
// A request whose caller has given up keeps its place until its answer has come, or until it is let go.
//
// Thread: any thread; nothing is called with a lock held.
class RequestLines {
 public:
  using Id = std::uint64_t;

  struct Request {
    std::function<void()> send;
    std::function<void(const CameraError&)> fail;  // tells the caller; at most once
  };

  // A number for the next request, known before it is added.
  Id nextId();
  // Sends it when its turn comes, which may be at once. kind: a text that lives on.
  void add(std::string_view kind, Id id, Request request);
  // Holds what watches over a request that is there until it has ended; lets it go at once where it has ended already.
  void keep(std::string_view kind, Id id, std::shared_ptr<void> watch);
  // Its answer has come, or does not come any more; the next one of its kind is sent.
  void answered(std::string_view kind, Id id);
  // Tells its caller why there is no answer. True where it was sent: it keeps its place until it counts as answered.
  bool giveUp(std::string_view kind, Id id, const CameraError& why);
  // Fails all, and whatever is added from now on.
  void failAll(const CameraError& why);

 private:
  struct Entry {
    Id id = 0;
    Request request;
    bool isSent = false;
    std::shared_ptr<void> watch = {};
  };
  using Line = std::deque<Entry>;

  Mutex mutex_;
  std::map<std::string_view, Line> lines_ ZEL_GUARDED_BY(mutex_);
  Id next_ ZEL_GUARDED_BY(mutex_) = 1;
  std::shared_ptr<const CameraError> end_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel

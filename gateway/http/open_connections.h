#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include "gateway/http/exchange.h"

namespace zel::gateway {

// The connections that are open, and since when each has been sending a request. The library's own limit of idle times
// counts from the last byte, so that a byte now and then would keep a connection for ever.
//
// Thread: any thread.
class OpenConnections {
 public:
  using Clock = std::chrono::steady_clock;

  explicit OpenConnections(std::chrono::seconds requestLimit) : requestLimit_(requestLimit) {}

  void add(const void* connection, int socket, Clock::time_point now);
  void remove(const void* connection);
  // It has begun to send the next part of its request, or waits for its answer.
  void noteSending(const void* connection, Clock::time_point now);
  void noteAsked(const void* connection);

  // Ends those that have been sending for too long.
  void endSlow(Clock::time_point now);

  // Exchanges that must not wait any more when the server stops. Once it does, each is told at once.
  void add(const std::shared_ptr<Exchange>& exchange);
  void remove(const Exchange* exchange);
  void stopAll();

  std::size_t count() const;

 private:
  struct One {
    int socket = -1;
    std::optional<Clock::time_point> sendingSince;
  };
  const std::chrono::seconds requestLimit_;
  mutable std::mutex mutex_;
  std::map<const void*, One> connections_;
  std::map<const Exchange*, std::weak_ptr<Exchange>> exchanges_;
  bool isStopping_ = false;
};

}  // namespace zel::gateway

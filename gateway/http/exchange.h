#pragma once

#include <microhttpd.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "gateway/http/request.h"
#include "gateway/http/response.h"

namespace zel::gateway {

// One request of a connection and its answer, from the first line to the last byte. While there is nothing to do for it
// the connection is suspended; whoever has something resumes it.
//
// Thread: the server's, but for what says otherwise.
class Exchange : public std::enable_shared_from_this<Exchange> {
 public:
  Exchange(MHD_Connection* connection, std::string target) : connection_(connection), target_(std::move(target)) {}

  enum class Step { head, body, asked };
  Step step = Step::head;
  Request request;
  std::size_t mostBody = 0;  // bytes that it may have

  const std::string& target() const { return target_; }

  // What answers it. Where that is destroyed unused, the answer is one of 500.
  //
  // Thread: it may be called and destroyed on any thread.
  Respond responder();

  // The answer, where it is there. Otherwise suspends the connection, unless the server stops.
  std::optional<Response> takeOrSuspend();

  // Wakes the connection: there may be more to read of its stream.
  //
  // Thread: any thread.
  void wake();
  // Notes that the stream is about to be read: a wake() from now on is not lost.
  void willRead();
  // Suspends the connection, unless it was woken since willRead(). False: read again.
  bool suspendUnlessWoken();
  bool isStopping();

  // The server stops: nothing is waited for any more.
  //
  // Thread: any thread.
  void stop();
  // The connection is gone, or goes on with its next request.
  void detach();

 private:
  void set(Response response);
  void resume();  // with the lock held

  std::mutex mutex_;
  MHD_Connection* connection_;
  const std::string target_;
  std::optional<Response> response_;
  bool isSuspended_ = false, isWoken_ = false, isStopping_ = false, isAnswered_ = false;
};

}  // namespace zel::gateway

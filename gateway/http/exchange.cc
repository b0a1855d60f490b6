#include "gateway/http/exchange.h"

#include <utility>

namespace zel::gateway {

Respond Exchange::responder() {
  // Shared by all copies of the function; its end is theirs.
  struct Answering {
    explicit Answering(std::shared_ptr<Exchange> one) : exchange(std::move(one)) {}
    const std::shared_ptr<Exchange> exchange;
    ~Answering() { exchange->set(problem(500, "the request was dropped; the server's own words may say why")); }
  };
  const auto answering = std::make_shared<Answering>(shared_from_this());
  return [answering](Response response) { answering->exchange->set(std::move(response)); };
}

void Exchange::set(Response response) {
  const std::lock_guard lock(mutex_);
  if (std::exchange(isAnswered_, true)) return;
  response_ = std::move(response);
  resume();
}

std::optional<Response> Exchange::takeOrSuspend() {
  const std::lock_guard lock(mutex_);
  if (response_) return std::exchange(response_, std::nullopt);
  if (isStopping_) return problem(503, "the server stops");
  isSuspended_ = true;
  MHD_suspend_connection(connection_);
  return std::nullopt;
}

void Exchange::wake() {
  const std::lock_guard lock(mutex_);
  isWoken_ = true;
  resume();
}

void Exchange::willRead() {
  const std::lock_guard lock(mutex_);
  isWoken_ = false;
}

bool Exchange::suspendUnlessWoken() {
  const std::lock_guard lock(mutex_);
  if (isWoken_ || isStopping_) return false;
  isSuspended_ = true;
  MHD_suspend_connection(connection_);
  return true;
}

bool Exchange::isStopping() {
  const std::lock_guard lock(mutex_);
  return isStopping_;
}

void Exchange::stop() {
  const std::lock_guard lock(mutex_);
  isStopping_ = true;
  resume();
}

void Exchange::detach() {
  const std::lock_guard lock(mutex_);
  connection_ = nullptr;
  isSuspended_ = false;
}

void Exchange::resume() {
  if (connection_ != nullptr && std::exchange(isSuspended_, false)) MHD_resume_connection(connection_);
}

}  // namespace zel::gateway

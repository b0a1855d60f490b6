#include "gateway/http/open_connections.h"

#include <sys/socket.h>

#include <vector>

namespace zel::gateway {

void OpenConnections::add(const void* connection, int socket, Clock::time_point now) {
  const std::lock_guard lock(mutex_);
  connections_[connection] = {socket, now};
}

void OpenConnections::remove(const void* connection) {
  const std::lock_guard lock(mutex_);
  connections_.erase(connection);
}

void OpenConnections::noteSending(const void* connection, Clock::time_point now) {
  const std::lock_guard lock(mutex_);
  const auto found = connections_.find(connection);
  if (found != connections_.end()) found->second.sendingSince = now;
}

void OpenConnections::noteAsked(const void* connection) {
  const std::lock_guard lock(mutex_);
  const auto found = connections_.find(connection);
  if (found != connections_.end()) found->second.sendingSince.reset();
}

// The sockets stay open while the lock is held: their owner removes them first.
void OpenConnections::endSlow(Clock::time_point now) {
  const std::lock_guard lock(mutex_);
  for (auto& [connection, one] : connections_) {
    if (!one.sendingSince || now - *one.sendingSince < requestLimit_) continue;
    ::shutdown(one.socket, SHUT_RDWR);
    one.sendingSince.reset();
  }
}

void OpenConnections::add(const std::shared_ptr<Exchange>& exchange) {
  std::unique_lock lock(mutex_);
  if (!isStopping_) {
    exchanges_[exchange.get()] = exchange;
    return;
  }
  lock.unlock();
  exchange->stop();
}

void OpenConnections::remove(const Exchange* exchange) {
  const std::lock_guard lock(mutex_);
  exchanges_.erase(exchange);
}

void OpenConnections::stopAll() {
  std::vector<std::shared_ptr<Exchange>> all;
  {
    const std::lock_guard lock(mutex_);
    isStopping_ = true;
    for (const auto& [key, weak] : exchanges_) {
      if (auto exchange = weak.lock()) all.push_back(std::move(exchange));
    }
  }
  for (const auto& exchange : all) exchange->stop();
}

std::size_t OpenConnections::count() const {
  const std::lock_guard lock(mutex_);
  return connections_.size();
}

}  // namespace zel::gateway

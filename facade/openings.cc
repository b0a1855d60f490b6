#include "facade/openings.h"

#include <utility>

namespace zel {

Openings::Id Openings::add(Done done) {
  const MutexLock lock(mutex_);
  openings_.emplace(next_, Opening{std::move(done), nullptr});
  return next_++;
}

void Openings::keep(Id id, std::shared_ptr<void> watch) {
  const MutexLock lock(mutex_);
  const auto found = openings_.find(id);
  if (found != openings_.end()) found->second.watch.swap(watch);
}

void Openings::end(Id id, const std::optional<CameraError>& why) {
  Opening ended;
  {
    const MutexLock lock(mutex_);
    const auto found = openings_.find(id);
    if (found == openings_.end()) return;
    ended = std::move(found->second);
    openings_.erase(found);
  }
  ended.done(why);
}

void Openings::endAll(const std::optional<CameraError>& why) {
  std::map<Id, Opening> ended;
  {
    const MutexLock lock(mutex_);
    ended.swap(openings_);
  }
  for (const auto& [id, one] : ended) one.done(why);
}

bool Openings::areNone() const {
  const MutexLock lock(mutex_);
  return openings_.empty();
}

}  // namespace zel

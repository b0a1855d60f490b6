#include "gateway/cameras/notices.h"

#include <utility>

namespace zel::gateway {

std::shared_ptr<void> Notices::take(Taker taker) {
  const std::lock_guard lock(state_->mutex);
  const int id = state_->next++;
  state_->takers.emplace(id, std::move(taker));
  return std::shared_ptr<void>(state_.get(), [state = state_, id](void*) {
    const std::lock_guard ending(state->mutex);
    state->takers.erase(id);
  });
}

void Notices::post(const Notice& notice) {
  const std::lock_guard lock(state_->mutex);
  for (const auto& [id, taker] : state_->takers) taker(notice);
}

bool Notices::isTaken() const {
  const std::lock_guard lock(state_->mutex);
  return !state_->takers.empty();
}

}  // namespace zel::gateway

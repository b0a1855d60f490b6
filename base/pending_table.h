#pragma once

#include <deque>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace zel {

// Pending handlers, at most one for each key: a later one replaces an earlier one.
//
// A request is announced, then written, and only then its handler is stored, because that order is observable: a reply
// that arrives in between belongs to an earlier handler that is still pending. Without one it is the reply of the
// announced request, which arrived before put(). It is kept until put(), so that no completion is lost.
// Thread: none; the owner guards it with a lock.
template <class Key, class Handler, class Answer>
class PendingTable {
 public:
  void announce(const Key& key) { ++entries_[key].announced; }

  // The announced request was not sent after all.
  void withdraw(const Key& key) { leave(entries_.find(key)); }

  // Stores the handler of an announced request, or returns the reply that has already arrived for it. Afterwards
  // `handler` holds the replaced one, if any, so that the owner destroys it without its lock.
  [[nodiscard]] std::optional<Answer> put(const Key& key, std::optional<Handler>& handler) {
    const auto entry = entries_.find(key);
    std::optional<Answer> answer;
    if (entry->second.early.empty()) {
      entry->second.handler.swap(handler);
    } else {
      answer = std::move(entry->second.early.front());
      entry->second.early.pop_front();
    }
    leave(entry);
    return answer;
  }

  // Removes and returns the pending handler. When a request is only announced, the reply is kept for it.
  [[nodiscard]] std::optional<Handler> take(const Key& key, const Answer& answer) {
    const auto entry = entries_.find(key);
    if (entry == entries_.end()) return std::nullopt;
    auto handler = std::exchange(entry->second.handler, std::nullopt);
    if (!handler && entry->second.early.size() < entry->second.announced) entry->second.early.push_back(answer);
    forgetEmpty(entry);
    return handler;
  }

  // Takes out some handler, while there are any. It takes no memory.
  [[nodiscard]] std::optional<Handler> takeAny() {
    for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
      if (!entry->second.handler) continue;
      auto handler = std::exchange(entry->second.handler, std::nullopt);
      forgetEmpty(entry);
      return handler;
    }
    return std::nullopt;
  }

  // Removes and returns every handler, in the order of the keys, and keeps the reply for every announced request.
  // Errors: std::bad_alloc; none was taken then.
  [[nodiscard]] std::vector<Handler> takeAll(const Answer& answer) {
    std::vector<Handler> handlers;
    handlers.reserve(entries_.size());
    for (auto& [key, entry] : entries_) entry.early.resize(entry.announced, answer);
    // From here on nothing takes memory, so that no handler is lost for want of it.
    for (auto entry = entries_.begin(); entry != entries_.end();) {
      if (entry->second.handler) handlers.push_back(*std::exchange(entry->second.handler, std::nullopt));
      entry = forgetEmpty(entry);
    }
    return handlers;
  }

  // Whether a handler is pending for the key, or a request is announced and has no reply yet.
  bool isExpected(const Key& key) const {
    const auto entry = entries_.find(key);
    return entry != entries_.end() && (entry->second.handler || entry->second.early.size() < entry->second.announced);
  }

 private:
  struct Entry {
    std::size_t announced = 0;
    std::deque<Answer> early;  // at most one for each announced request
    std::optional<Handler> handler;
  };
  using Entries = std::map<Key, Entry>;

  void leave(typename Entries::iterator entry) {
    --entry->second.announced;
    if (entry->second.early.size() > entry->second.announced) entry->second.early.pop_back();
    forgetEmpty(entry);
  }

  typename Entries::iterator forgetEmpty(typename Entries::iterator entry) {
    const bool used = entry->second.announced != 0 || entry->second.handler;
    return used ? std::next(entry) : entries_.erase(entry);
  }

  Entries entries_;
};

}  // namespace zel

#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace zel::gateway {

// A message for the broker.
struct MqttMessage {
  std::string topic, content;
  bool isRetained = false;

  bool operator==(const MqttMessage&) const = default;
};

// What is still to be sent. Of a retained topic the newest content counts, and all of them are sent again to a broker
// that may have forgotten them; of the others so many are kept, and the oldest go first.
//
// Thread: one at a time.
class MqttOutbox {
 public:
  static constexpr std::size_t kMostTopics = 4'096, kMostOthers = 256;
  static constexpr std::size_t kLargest = std::size_t{256} << 10;  // bytes of a message

  // Errors: false for a message that is too large, and for a retained topic beyond the limit; it is counted.
  bool put(MqttMessage message) {
    const bool isFull = message.isRetained && retained_.size() >= kMostTopics && !retained_.contains(message.topic);
    if (isFull || message.content.size() > kLargest) return ++dropped_, false;
    if (message.isRetained) {
      std::string& content = retained_[message.topic];
      if (content == message.content && !content.empty()) return true;  // the broker has it, or will have it
      content = std::move(message.content);
      changed_.insert(std::move(message.topic));
      return true;
    }
    if (others_.size() >= kMostOthers) {
      others_.pop_front();
      ++dropped_;
    }
    others_.push_back(std::move(message));
    return true;
  }

  // The next one to be sent, retained ones first.
  std::optional<MqttMessage> take() {
    if (!changed_.empty()) {
      const std::string topic = std::move(changed_.extract(changed_.begin()).value());
      return MqttMessage{topic, retained_[topic], true};
    }
    if (others_.empty()) return std::nullopt;
    MqttMessage next = std::move(others_.front());
    others_.pop_front();
    return next;
  }

  // Another connection: everything retained is to be sent again. Answers are for who asked, on the connection before.
  void restart() {
    for (const auto& [topic, content] : retained_) changed_.insert(topic);
    dropped_ += others_.size();
    others_.clear();
  }

  bool isEmpty() const { return changed_.empty() && others_.empty(); }
  std::uint64_t dropped() const { return dropped_; }

 private:
  std::map<std::string, std::string> retained_;
  std::set<std::string> changed_;  // topics of these
  std::deque<MqttMessage> others_;
  std::uint64_t dropped_ = 0;
};

}  // namespace zel::gateway

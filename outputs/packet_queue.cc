#include "outputs/packet_queue.h"

#include <utility>

#include "base/has_memory_for.h"

namespace zel {

bool PacketQueue::put(MediaPacket packet) {
  if (waitsForKey_ && !packet.key) {
    ++dropped_;
    return false;
  }
  const std::uint64_t before = dropped_;
  waitsForKey_ = !hasMemoryFor([&] { packets_.push_back(std::move(packet)); });
  if (waitsForKey_) {
    ++dropped_;
    return true;  // what follows is of no use without it
  }
  bytes_ += packets_.back().data.size();
  while (isTooMuch()) dropUpToKey();
  return dropped_ != before;
}

std::optional<MediaPacket> PacketQueue::take() {
  if (packets_.empty()) return std::nullopt;
  MediaPacket oldest = std::move(packets_.front());
  packets_.pop_front();
  bytes_ -= oldest.data.size();
  return oldest;
}

void PacketQueue::restart() {
  while (!packets_.empty()) dropFirst();
  waitsForKey_ = true;
}

bool PacketQueue::isTooMuch() const {
  if (packets_.empty()) return false;
  return bytes_ > limits_.bytes || packets_.back().time - packets_.front().time > limits_.microseconds;
}

void PacketQueue::dropFirst() {
  bytes_ -= packets_.front().data.size();
  packets_.pop_front();
  ++dropped_;
}

void PacketQueue::dropUpToKey() {
  dropFirst();
  while (!packets_.empty() && !packets_.front().key) dropFirst();
  waitsForKey_ = packets_.empty();
}

}  // namespace zel

#include "outputs/mp4_sink.h"

#include <utility>

#include "outputs/plain_mp4.h"

namespace zel {

Mp4Sink::Mp4Sink(OutputAddress address, std::function<void(const std::string&)> tell)
    : path_(address.target), tell_(std::move(tell)), fragments_(std::move(address)) {}

Fault Mp4Sink::open(const StreamHeaders& headers) {
  spherical_ = headers.spherical;
  return fragments_.open(headers);
}

// A fragment contains the duration of its last picture, and the next one's times count from its end. So a picture is
// held back until the next one arrives; otherwise unevenly spaced pictures would be shifted.
Fault Mp4Sink::write(const MediaPacket& packet) {
  if (packet.track == Track::audio) return fragments_.write(packet);
  if (held_) {
    if (Fault fault = writeHeld(packet.time - held_->time)) return fault;
  }
  held_ = packet;
  return std::nullopt;
}

Fault Mp4Sink::writeHeld(std::int64_t length) {
  held_->length = heldLength_ = length;
  return fragments_.write(*held_);
}

Fault Mp4Sink::finish() {
  if (held_) {
    if (Fault fault = writeHeld(heldLength_)) return fault;
  }
  if (Fault fault = fragments_.finish()) return fault;
  if (const Fault fault = makePlainMp4(path_, spherical_)) tell_(*fault);
  return std::nullopt;
}

}  // namespace zel

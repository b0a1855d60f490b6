#include "bindings/gstreamer/stream_times.h"

#include <algorithm>
#include <utility>

namespace zel::gst {
namespace {

constexpr std::int64_t kNanoseconds = 1000;  // in a microsecond

}  // namespace

void StreamTimes::restart() {
  shift_.reset();
  for (Line& line : lines_) line.breakIsAwaited = false;
}

void StreamTimes::arrived(const MediaPacket& packet, bool begins, std::uint64_t at) {
  Line& line = lines_.at(number(packet.track));
  const bool wasAwaited = std::exchange(line.breakIsAwaited, line.breakIsAwaited && !packet.discontinuity);
  const bool breaks = packet.discontinuity && !wasAwaited;
  if (shift_ ? !breaks : !begins) return;
  begin(packet.time, at);
  if (breaks) lines_.at(1 - number(packet.track)).breakIsAwaited = true;
}

// Not before the end of what stands there already, so that no track has to be squeezed.
void StreamTimes::begin(std::int64_t time, std::uint64_t at) {
  shift_ = static_cast<std::int64_t>(std::max(at, end_)) - time * kNanoseconds;
  for (Line& line : lines_) line.isFirst = true;
}

std::optional<StreamTimes::Placed> StreamTimes::place(Track track, std::int64_t time, std::uint64_t duration) {
  if (!shift_) return std::nullopt;
  Line& line = lines_.at(number(track));
  const std::int64_t placed = std::max<std::int64_t>(0, time * kNanoseconds + *shift_);
  const std::uint64_t at = std::max(line.next, static_cast<std::uint64_t>(placed));
  line.next = at + 1;
  end_ = std::max(end_, at + duration);
  return Placed{at, std::exchange(line.isFirst, false)};
}

}  // namespace zel::gst

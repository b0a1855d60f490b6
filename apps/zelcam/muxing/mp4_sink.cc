#include "apps/zelcam/muxing/mp4_sink.h"

#include <utility>

#include "apps/zelcam/muxing/plain_mp4.h"

namespace zel::app {

Mp4Sink::Mp4Sink(OutputAddress address, std::function<void(const std::string&)> tell)
    : path_(address.target), tell_(std::move(tell)), fragments_(std::move(address)) {}

Fault Mp4Sink::open(const StreamHeaders& headers) {
  spherical_ = headers.spherical;
  return fragments_.open(headers);
}

Fault Mp4Sink::finish() {
  if (Fault fault = fragments_.finish()) return fault;
  if (const Fault fault = makePlainMp4(path_, spherical_)) tell_(*fault);
  return std::nullopt;
}

}  // namespace zel::app

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "outputs/libav_sink.h"
#include "outputs/sink.h"

namespace zel {

// An MP4 file: in fragments while it grows, plain once it is finished.
class Mp4Sink final : public Sink {
 public:
  // tell: called if the file has to stay fragmented; it can still be played.
  Mp4Sink(OutputAddress address, std::function<void(const std::string&)> tell);

  Fault open(const StreamHeaders& headers) override;
  Fault write(const MediaPacket& packet) override;
  Fault finish() override;
  LeftOut leftOut() const override { return fragments_.leftOut(); }

 private:
  Fault writeHeld(std::int64_t length);

  const std::string path_;
  const std::function<void(const std::string&)> tell_;
  bool spherical_ = false;
  LibavSink fragments_;
  std::optional<MediaPacket> held_;  // the newest picture
  std::int64_t heldLength_ = 0;      // of the previous one
};

}  // namespace zel

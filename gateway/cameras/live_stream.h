#pragma once

#include <ZELTarkaSDK/Camera.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "gateway/feed/live_feed.h"

namespace zel::gateway {

// A camera's stream, which runs while somebody needs it and a few seconds longer, and feeds everybody who looks.
//
// Owner:  the camera must outlive it; holds may.
//
// Thread: any thread.
class LiveStream {
 public:
  using Clock = std::chrono::steady_clock;

  // resolution: the camera's code.
  LiveStream(Camera& camera, std::uint8_t resolution);
  ~LiveStream();
  LiveStream(const LiveStream&) = delete;
  LiveStream& operator=(const LiveStream&) = delete;

  // A reason for the stream to run, until the token is destroyed. Begins it at once where nobody is beginning or ending
  // it, else with the next look().
  [[nodiscard]] std::shared_ptr<void> hold();

  // Ends the stream, and every viewer.
  void end();

  LiveFeed& feed() { return feed_; }
  std::uint8_t resolution() const { return resolution_; }

  // Calls with the stream; false where none runs.
  bool withStream(const std::function<void(CameraStream&)>& call);

  // Begins the stream, begins it again where it has failed, or ends it, as the reasons are. Asked about once a second.
  void look(Clock::time_point now);

 private:
  // A stream and what takes its packets.
  struct Run {
    explicit Run(CameraStream started) : stream(std::move(started)), packets(stream.packets()) {}
    CameraStream stream;
    bool hasHeaders = false;  // where the packets are taken
    Subscription<MediaPacket> packets;
  };

  bool isWanted(Clock::time_point now);
  void begin();
  void feed(Run& run, const MediaPacket& packet);

  Camera& camera_;
  const std::uint8_t resolution_;
  LiveFeed feed_;
  const std::shared_ptr<int> holds_ = std::make_shared<int>();  // counts references
  std::mutex mutex_;                                            // of what follows; held while a stream begins and ends
  std::optional<Clock::time_point> lastHeld_;
  std::unique_ptr<Run> run_;
  bool isEnded_ = false;
};

}  // namespace zel::gateway

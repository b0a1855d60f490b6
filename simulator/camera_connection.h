#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <random>

#include "platform/linux/asio.h"
#include "simulator/camera_world.h"
#include "simulator/frame_source.h"
#include "simulator/host_frames.h"
#include "simulator/media/media_library.h"
#include "simulator/media/media_source.h"
#include "simulator/simulated_camera.h"
#include "simulator/simulator_options.h"
#include "simulator/wire.h"

namespace zel::simulator {

// What all connections of one simulator share.
struct ConnectionSetup {
  SimulatorOptions& options;  // counted faults are used up
  SimulatedCamera& camera;
  MediaLibrary& media;
  std::function<void(std::uint16_t)> requestSeen;  // for every message of the host, with its code
  std::function<void()> unplug;                    // requested by a fault
  std::function<void()> closed;                    // called once, when the connection has ended
};

// The camera's end of one connection. It begins in the middle of a frame, and passes the host's requests to the camera.
// Pictures are sent from the preview's start to its stop, sound with them while it is switched on; both are off at
// first. Otherwise it sends a timestamp regularly. While the host does not read, media is dropped and replies are
// queued.
// Thread: that of the io_context.
class CameraConnection final : public HostLink, public std::enable_shared_from_this<CameraConnection> {
 public:
  using Socket = asio::local::stream_protocol::socket;

  CameraConnection(Socket socket, ConnectionSetup setup);

  void start();
  void close();
  // Sends nothing for that long.
  void beSilent(double seconds);

  void reply(std::uint16_t code, Bytes body) override;
  void send(Bytes frame) override;
  void startPreview(int resolution) override;
  void stopPreview() override;
  void switchSound(bool on) override { sound_ = on; }
  std::int64_t mediaTime() const override;

 private:
  using Clock = std::chrono::steady_clock;

  void receive();
  void take(HostFrame frame);
  void answer(const HostMessage& request);
  void answerSyncData(const HostMessage& request);
  void sendMarker();
  void answerSyncTime(const HostMessage& request);
  void sendReply(std::uint16_t code, const Bytes& body);
  void beginMedia();
  void sendMedia(std::uint64_t preview);
  void sendMediaFrame(const MediaFrame& frame);
  double mediaSeconds() const;
  double sinceMediaBegan() const { return mediaSeconds() - mediaStart_; }
  void sendImpossibleLengths();
  void sendHeartbeats();
  void stallEverySoOften();
  void write();
  std::size_t nextPiece();
  void wait(Clock::duration time, std::function<void()> then);

  Socket socket_;
  const ConnectionSetup setup_;
  FrameSource source_;
  std::optional<MediaSource> media_;  // while pictures are sent
  std::optional<MediaFrame> nextFrame_;
  HostFrames requests_;
  std::mt19937_64 random_;
  std::array<std::uint8_t, 65536> received_{};
  std::deque<Bytes> outgoing_;
  std::size_t queued_ = 0;
  std::size_t written_ = 0;  // of the front of outgoing_
  std::uint64_t bytesSent_ = 0;
  bool writing_ = false;
  bool markerSent_ = false;
  bool closed_ = false;
  bool sound_ = false;
  std::uint64_t preview_ = 0;  // counts starts and stops; only the last one is in effect
  int pictures_ = 0;
  Clock::time_point silentUntil_ = Clock::time_point::min();
  double clockStart_ = 0;  // in mediaSeconds()
  double mediaStart_ = 0;  // in mediaSeconds()
};

}  // namespace zel::simulator

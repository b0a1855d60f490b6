#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <random>

#include "simulator/asio.h"
#include "simulator/camera_world.h"
#include "simulator/faults.h"
#include "simulator/frame_source.h"
#include "simulator/host_frames.h"
#include "simulator/media/media_library.h"
#include "simulator/media/media_source.h"
#include "simulator/simulated_camera.h"
#include "simulator/wire.h"

namespace zel::simulator {

// What all connections of one simulator share.
struct ConnectionSetup {
  int firmware = 192;
  int bitrate = 0;  // as SimulatorOptions has it
  int slices = 1;   // likewise
  std::uint64_t seed = 1;
  SimulatedCamera* camera = nullptr;
  MediaLibrary* media = nullptr;
  Faults* faults = nullptr;                        // the counted ones are spent
  std::function<void(std::uint16_t)> requestSeen;  // for every message of the host, with its code
  std::function<void()> unplug;                    // asked for by a fault
  std::function<void()> closed;                    // the connection has ended, once
  std::function<void(const std::string&)> warn;
  std::function<double()> mediaSeconds;  // as SimulatorOptions has it
};

// The camera's end of one connection: begins inside a frame, and brings the host's requests to the camera. Pictures are
// sent from the preview's start to its stop, sound with them while it is switched on; both are off at first. Otherwise
// a time stamp now and then shows that the camera is there. Media is dropped while the host does not read; answers are
// not.
// Thread: that of the io_context.
class CameraConnection final : public HostLink, public std::enable_shared_from_this<CameraConnection> {
 public:
  using Socket = asio::local::stream_protocol::socket;

  CameraConnection(Socket socket, ConnectionSetup setup);

  void start();
  void close();
  // No byte is sent for that long.
  void beSilent(double seconds);

  std::uint64_t bytesSent() const { return bytesSent_; }

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
  double sinceMediaBegan() const;
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
  std::uint64_t preview_ = 0;  // counts starts and stops; only the last is heard
  int pictures_ = 0;
  Clock::time_point silentUntil_ = Clock::time_point::min();
  double clockStart_ = 0;  // as mediaSeconds() counts
  double mediaStart_ = 0;  // as mediaSeconds() counts
};

}  // namespace zel::simulator

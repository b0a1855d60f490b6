#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <ZELTarkaSDK/platform/accessory.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "gateway/line/camera_line.h"
#include "gateway/line/host_socket.h"
#include "link/frame_cutter.h"
#include "link/frame_statistics.h"
#include "platform/linux/linux_run_loop.h"
#include "platform/linux/unique_descriptor.h"

namespace zel::gateway {

enum class LineState {
  absent,     // not attached, or it cannot be connected
  opening,    // attached, and no frame has come
  streaming,  // frames arrive
  silent,     // they have stopped
};

// One camera that is held: its real session, opened again after a loss, and the hosts that share it. They end with the
// session, save those that have not been promised frames yet.
//
// Thread: that of the run loop.
class SharedCamera final : public platform::StreamDelegate,
                           public std::enable_shared_from_this<SharedCamera>,
                           FrameSink {
 public:
  // stateChanged: called on the run loop's thread.
  //
  // Owner:  the ports must outlive the object and its openings in progress, see isOpening().
  SharedCamera(const platform::Ports& ports, std::shared_ptr<platform::LinuxRunLoop> loop,
               std::function<void(LineState)> stateChanged);
  ~SharedCamera();
  SharedCamera(const SharedCamera&) = delete;
  SharedCamera& operator=(const SharedCamera&) = delete;

  // The camera was attached. isReturn: the connection is there already, and opening does not wait.
  void arrived(std::shared_ptr<platform::Accessory> accessory, bool isReturn);
  void departed(const std::shared_ptr<platform::Accessory>& accessory);
  void admit(platform::UniqueDescriptor descriptor);
  // Ends the session and the hosts, and opens none again.
  void close();

  LineState state() const { return state_; }
  const std::shared_ptr<platform::Accessory>& accessory() const { return accessory_; }
  // Whether another thread is opening a session.
  bool isOpening() const { return isOpening_; }

 private:
  void streamHandleEvent(platform::Stream& stream, platform::StreamEvent event) override;
  void takeFrame(std::uint16_t type, ByteView payload) override;
  void streamBegins() override { hasMarker_ = true; }
  bool awaitsPhoto() override { return line_->awaitsPhoto(); }
  void positionLost() override { isLost_ = true; }

  void open();
  void opened(std::unique_ptr<platform::AccessorySession> session);
  void closeSession();
  void reopen();
  void endHosts();
  void read();
  void writeToCamera();
  void serveAll();
  void arm();
  void timer();
  void lookAtSilence();
  void setState(LineState state);

  const platform::Ports& ports_;
  const std::shared_ptr<platform::LinuxRunLoop> loop_;
  const std::function<void(LineState)> stateChanged_;
  std::vector<std::uint8_t> buffer_;

  LineState state_ = LineState::absent;
  std::shared_ptr<platform::Accessory> accessory_;  // null while it is not attached
  bool isOpening_ = false, isClosed_ = false;

  std::unique_ptr<platform::AccessorySession> session_;  // null while there is none
  FrameStatistics statistics_;
  std::unique_ptr<FrameCutter> cutter_;  // of the session
  bool hasMarker_ = false, isLost_ = false;
  LineTime now_, lastFrame_, lastMarker_;

  std::unique_ptr<CameraLine> line_;  // never null
  std::vector<std::shared_ptr<HostSocket>> hosts_;
  bool isServing_ = false, serveAgain_ = false;

  asio::steady_timer timer_;
  LineTime nextLook_;
  std::optional<LineTime> armed_;
};

}  // namespace zel::gateway

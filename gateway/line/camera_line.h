#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <utility>

#include "base/wire.h"
#include "gateway/line/host_frames.h"
#include "gateway/line/line_host.h"
#include "gateway/line/picture_cache.h"
#include "gateway/line/request_desk.h"
#include "gateway/line/upload_turns.h"
#include "protocol/frame.h"

namespace zel::gateway {

// One session with a camera, shared among hosts, each of which takes the line for the camera. It knows neither sockets
// nor threads: its owner brings the frames and the time, and takes away what is to be written.
//
// - The marker is the line's own, and comes at once.
// - A reply goes to who asked, an event to everybody. Whoever waits behind others, and for how long: see RequestDesk.
// - Preview and sound run from the first host that asks to the last that stops or goes. A later one gets the reply of
//   the first, whatever resolution it asks: the running preview goes on. Alone, it may ask for another one.
// - Everything else goes to the camera, also what changes it for everybody.
//
// Thread: one.
class CameraLine final : RequestDesk::Owner {
 public:
  // Bytes that wait for the camera, above which no host is read.
  static constexpr std::size_t kMostToCamera = 1024 * 1024;

  CameraLine() : desk_(*this) {}

  // -- The camera's side
  // One whole frame.
  void takeFrame(std::uint16_t type, ByteView payload, LineTime now);
  // The camera has become silent: no host is promised frames until the next one.
  void noteSilence() { flows_ = false; }
  // A session begins: asks for the marker. Call it again while no frame comes.
  void askForMarker(bool isFirst);
  // Whether a frame has come.
  bool hasFlowed() const { return hasFlowed_; }
  // What is to be written to the camera next; empty when there is nothing.
  ByteView toCamera() const;
  void wroteToCamera(std::size_t count, LineTime now);
  // Whether a photo is expected, which may be longer than any other frame.
  bool awaitsPhoto() const { return desk_.awaitsPhoto(); }

  // -- The hosts' side
  HostId admit(LineTime now);
  void leave(HostId host, LineTime now);
  // Whether more of the host's bytes are welcome.
  bool mayRead(HostId host) const;
  void take(HostId host, HostFrame frame, LineTime now);
  // Whether the file that the host has begun may go on.
  bool mayBeginFile(HostId host, LineTime now) { return uploads_.mayBegin(host, now); }
  void fileMoved(LineTime now) { uploads_.moved(now); }
  HostQueue& queueOf(HostId host) { return hosts_.at(host).queue(); }
  // Whether the host must go: it reads too slowly, or its file stands still.
  bool isCutOff(HostId host);

  // -- The time
  void tick(LineTime now);
  std::optional<LineTime> due() const;

 private:
  using Hosts = std::map<HostId, LineHost>;

  RequestDesk::Verdict dispatch(const RequestDesk::Request& request) override;
  RequestDesk::Verdict startPreview(LineHost& host, const RequestDesk::Request& request);
  RequestDesk::Verdict stopPreview(LineHost* host, const RequestDesk::Request& request);
  RequestDesk::Verdict switchSound(LineHost* host, const RequestDesk::Request& request);
  RequestDesk::Verdict send(const RequestDesk::Request& request);
  RequestDesk::Verdict answer(LineHost* host, const RequestDesk::Request& request, ByteView body);

  void takeMessage(ByteView payload, LineTime now);
  void takeReply(std::uint16_t code, ByteView payload, LineTime now);
  void noteReply(LineHost& host, std::uint16_t request, ByteView body, LineTime now);
  void noteClocks(LineHost& host, ByteView body, LineTime now);
  void takeFileReply(ByteView payload, LineTime now);
  void takeMedia(MediaItem::Kind kind, ByteView payload, LineTime now);
  std::int64_t zeroOf(ByteView payload, LineTime now);
  void tellAll(const SharedBytes& frame);
  void syncData(LineHost& host, LineTime now);
  void syncWaiting(LineTime now);
  void askOwn(std::uint16_t code, ByteView body, LineTime now);
  LineHost* find(HostId host);
  bool anotherHas(bool LineHost::*what, const LineHost* besides) const;
  MediaItem signOfLife() const;

  LineTime now_;  // of the call in progress
  RequestDesk desk_;
  UploadTurns uploads_;
  PictureCache cache_;
  Hosts hosts_;
  HostId nextHost_ = 1;
  std::optional<HostId> stoodStill_;

  std::deque<Bytes> toCamera_;
  std::size_t toCameraBytes_ = 0, begun_ = 0;

  bool flows_ = false;  // the camera's frames arrive
  bool hasFlowed_ = false;
  LineTime lastFrame_;
  Bytes startReply_;               // the camera's, to the start of the preview that runs
  std::optional<MediaItem> time_;  // the last one of the pictures
  // When the camera's clock stood at 0, in milliseconds of the line's clock: after its last comparison, before that,
  // and for the time that came last.
  std::int64_t zero_ = 0, before_ = 0, used_ = 0;
  LineTime clockAsked_;  // when the last comparison of the clocks was sent
};

}  // namespace zel::gateway

#pragma once

#include <memory>

#include <ZELTarkaSDK/OutputAddress.h>

#include "outputs/deadline.h"
#include "outputs/disk_sync.h"
#include "outputs/hls_files.h"
#include "outputs/libav.h"
#include "outputs/sink.h"

namespace zel {

// One output through libavformat. A server that does not accept data in time is an error.
//   .mp4    in fragments, a key picture or a second each, so that it plays wherever it ends; each is on the disk before
//           the next one begins
//   .m3u8   segments of two seconds and more, NAME-00000.ts and so on, of which the newest are kept
// Existing files are replaced. Standard output is abandoned when its reader has stopped reading at the end.
class LibavSink final : public Sink {
 public:
  // secondsToWait: for a server, each time.
  explicit LibavSink(OutputAddress address, double secondsToWait = 10);
  ~LibavSink() override;
  LibavSink(const LibavSink&) = delete;
  LibavSink& operator=(const LibavSink&) = delete;

  Fault open(const StreamHeaders& headers) override;
  Fault write(const MediaPacket& packet) override;
  Fault finish() override;
  LeftOut leftOut() const override { return leftOut_; }
  void endWithin(double seconds) override { deadline_.endWithin(seconds); }

 private:
  Fault openTarget();
  Fault folderFault() const;
  Fault syncFragment();
  Fault settled(int error);
  bool isRefusal(int error) const;
  void countLeftOut();
  void chooseOptions(Options& options) const;
  Fault faultFor(int error) const;
  static int isOver(void* sink) { return static_cast<LibavSink*>(sink)->deadline_.isOver() ? 1 : 0; }

  const OutputAddress address_;
  const double secondsToWait_;
  Deadline deadline_;
  bool isConnected_ = false;
  std::int64_t last_[2] = {INT64_MIN, INT64_MIN};  // timestamps by stream
  std::uint64_t handed_[2] = {0, 0};               // packets by stream
  LeftOut leftOut_;
  DiskSync disk_;
  std::int64_t synced_ = 0;  // bytes synced to disk
  std::unique_ptr<HlsFiles> hlsFiles_;
  MuxerPtr muxer_;
};

}  // namespace zel

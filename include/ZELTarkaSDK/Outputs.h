#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <ZELTarkaSDK/EncodedStreamReceiver.h>
#include <ZELTarkaSDK/OutputAddress.h>
#include <ZELTarkaSDK/OutputReport.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// Writes an encoded stream to files and servers. Each output has a thread and a queue of its own, so that a slow or
// dead one delays no other: it drops its oldest packets, up to a key picture, and says so once.
//
//   .mp4    with spherical-video metadata; plays wherever a crash ends it
//   .ts     MPEG-TS, also on standard output and for srt://
//   .flv    also for rtmp://
//   .m3u8   HLS: segments of two seconds beside it, of which the newest are kept
//
// A server that cannot be reached, or ends the stream, is tried again: 20 times in a row, after 2 s, and each time
// after half as long again. A file that cannot be written has failed.
//
// Owner:  nothing is needed after finish().
//
// Thread: any thread, several at a time; nothing but remove(), finish() and the destructor waits.
class ZEL_EXPORT Outputs final : public EncodedStreamReceiver {
 public:
  // Hears what people want to know, a sentence at a time.
  //
  // Thread: any thread, several at a time.
  using Tell = std::function<void(const std::string&)>;

  explicit Outputs(Tell tell = {});
  // Finishes.
  ~Outputs() override;
  Outputs(const Outputs&) = delete;
  Outputs& operator=(const Outputs&) = delete;

  // Adds an output and returns its number. While the stream runs it begins with the next key picture, at time 0.
  // After finish() nothing is added, and the number is 0.
  int add(const OutputAddress& address);

  // Ends that output as finish() does, and lets the others go on. Returns its last report; nothing for a number that
  // there is not.
  std::optional<OutputReport> remove(int id);

  void onHeaders(const StreamHeaders& headers) override;
  void onPacket(const MediaPacket& packet) override;

  // Waits until all have ended: files are written wholly, servers and standard output get five seconds.
  void finish();

  // Whether there are outputs, and none of them is left.
  bool haveAllFailed() const;

  // Of all outputs that were not removed, in the order in which they were added.
  std::vector<OutputReport> reports() const;

 private:
  struct State;
  const std::unique_ptr<State> state_;
};

}  // namespace zel

#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "base/mutex.h"
#include "gateway/outputs/output_place.h"
#include "gateway/outputs/output_streams.h"

namespace zel::gateway {

// The outputs of one camera, begun and ended while it runs, or before it is there. Outputs of one kind share a stream:
// the camera's own, or a stitched one of a size, which is decoded, stitched and encoded once for all of them.
//
// Thread: any thread. Beginning and ending wait for each other, and ending waits for the output's end; reading waits
//         for nothing.
class CameraOutputs {
 public:
  struct Options {
    std::string folder;            // of files
    std::size_t most = 16;         // outputs, those that have ended included
    std::size_t mostStitched = 2;  // sizes at once; each takes a processor and more
  };

  CameraOutputs(Options options, std::shared_ptr<OutputStreams> streams);
  // Ends all.
  ~CameraOutputs();
  CameraOutputs(const CameraOutputs&) = delete;
  CameraOutputs& operator=(const CameraOutputs&) = delete;

  // Begins an output. It has its number also when it could not be begun for long: its state tells.
  //
  // Errors: `invalid` for an address that is none, for one more than there may be, and for another bitrate of a size
  //         that is being stitched; `platform`; whatever the stream cannot be begun for.
  Result<OutputStatus> begin(const OutputRequest& request);

  // Ends an output and forgets it; tells what became of it. Files get their end, servers five seconds.
  //
  // Errors: `invalid` for a number that there is not.
  Result<OutputStatus> end(int id);

  // All that were not ended, in the order in which they began.
  std::vector<OutputStatus> list() const;

 private:
  // A stream and its kind.
  struct Shared {
    std::optional<StitchedSize> stitched;
    std::unique_ptr<OutputStream> stream;
  };
  struct Member {
    int id = 0, inStream = 0;
    std::shared_ptr<Shared> shared;
    std::shared_ptr<OutputPlace> place;
  };

  std::optional<CameraError> refusal(const OutputRequest& request) const;
  Result<std::shared_ptr<Shared>> sharedFor(const std::optional<StitchedSize>& stitched) const;
  std::vector<Member> members() const;
  static OutputStatus statusOf(const Member& member, OutputReport report);

  const Options options_;
  const std::shared_ptr<OutputStreams> streams_;
  std::mutex changing_;  // held while an output begins or ends
  mutable Mutex mutex_;
  std::vector<Member> members_ ZEL_GUARDED_BY(mutex_);
  int newest_ ZEL_GUARDED_BY(mutex_) = 0;
};

}  // namespace zel::gateway

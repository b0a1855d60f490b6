#pragma once

#include <ZELTarkaSDK/EncodedStream.h>

#include <optional>
#include <string>
#include <utility>

#include "base/shared_value.h"
#include "outputs/media_clock.h"
#include "outputs/stream_writer.h"

namespace zel {

// What all runs of an encoded stream share. A feed keeps it alive, since the camera's threads may be inside of the feed
// when the stream is destroyed.
//
// Thread: any thread.
class StreamCore {
 public:
  StreamCore(EncodedStreamReceiver& receiver, EncodedStream::Options options)
      : options_(std::move(options)), writer(receiver, options_.length, [this] { tellChange(); }) {}

  bool wantsPictures() const { return options_.picture != nullptr; }
  void picture(const platform::PixelBufferRef& picture, std::int64_t time) const {
    if (options_.picture) options_.picture(picture, time);
  }

  void fail(std::string why) {
    failure_.set(std::move(why));
    tellChange();
  }
  void forgetFailure() { failure_.set(std::nullopt); }
  std::optional<std::string> failure() const { return failure_.get(); }

 private:
  void tellChange() const {
    if (options_.changed) options_.changed();
  }

  const EncodedStream::Options options_;
  Guarded<std::optional<std::string>> failure_;

 public:
  MediaClock clock;
  StreamWriter writer;
};

}  // namespace zel

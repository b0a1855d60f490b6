#pragma once

#include <map>
#include <string>

#include "apps/zelcam/muxing/libav.h"

namespace zel::app {

// The files that FFmpeg's HLS muxer opens and closes by itself, without asking how that went: a segment, or a new list,
// that cannot be written whole is removed, and from then on nothing is written. The muxer renames a list when it has
// closed it; one that is no longer there takes no other's place.
// Owner:  the object must outlive the muxer.
class HlsFiles {
 public:
  HlsFiles() = default;
  ~HlsFiles();  // closes what a muxer that failed has left open
  HlsFiles(const HlsFiles&) = delete;
  HlsFiles& operator=(const HlsFiles&) = delete;

  void attachTo(AVFormatContext& muxer);

  // From now on nothing is written.
  void giveUp();

  // The first error, as FFmpeg counts them; 0 where there was none.
  int error() const { return error_; }

 private:
  int open(const AVFormatContext& muxer, AVIOContext*& io, const char* url, int flags, AVDictionary** options);
  int close(AVIOContext* io);

  std::map<AVIOContext*, std::string> paths_;  // of what is open
  int error_ = 0;
};

}  // namespace zel::app

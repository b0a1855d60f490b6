#pragma once

#include <map>
#include <string>

#include "outputs/libav.h"

namespace zel {

// The files that FFmpeg's HLS muxer opens and closes by itself, without checking for errors. A segment or a new list
// that cannot be written completely is removed, and nothing more is written. The muxer renames a list after closing it;
// a removed one replaces no other.
// Owner:  the object must outlive the muxer.
class HlsFiles {
 public:
  HlsFiles() = default;
  ~HlsFiles();  // closes files that a failed muxer has left open
  HlsFiles(const HlsFiles&) = delete;
  HlsFiles& operator=(const HlsFiles&) = delete;

  void attachTo(AVFormatContext& muxer);

  // Writes nothing more.
  void giveUp();

  // The first FFmpeg error; 0 for none.
  int error() const { return error_; }

 private:
  int open(const AVFormatContext& muxer, AVIOContext*& io, const char* url, int flags, AVDictionary** options);
  int close(AVIOContext* io);

  std::map<AVIOContext*, std::string> paths_;  // of open files
  int error_ = 0;
};

}  // namespace zel

#include "outputs/hls_files.h"

#include <unistd.h>

#include "outputs/disk_sync.h"

namespace zel {
namespace {

// After a power cut a list must not name segments that were lost.
int putOnDisk(const std::string& path) {
  DiskSync disk;
  const int fault = disk.open(path);
  return AVERROR(fault != 0 ? fault : disk.sync());
}

}  // namespace

HlsFiles::~HlsFiles() {
  for (const auto& [io, path] : paths_) avio_close(io);
}

void HlsFiles::attachTo(AVFormatContext& muxer) {
  muxer.opaque = this;
  muxer.io_open = [](AVFormatContext* from, AVIOContext** io, const char* url, int flags, AVDictionary** options) {
    return static_cast<HlsFiles*>(from->opaque)->open(*from, *io, url, flags, options);
  };
  muxer.io_close2 = [](AVFormatContext* from, AVIOContext* io) {
    return static_cast<HlsFiles*>(from->opaque)->close(io);
  };
}

void HlsFiles::giveUp() {
  if (error_ == 0) error_ = AVERROR_EXIT;
}

int HlsFiles::open(const AVFormatContext& muxer, AVIOContext*& io, const char* url, int flags, AVDictionary** options) {
  if (error_ != 0) return error_;
  const int error = avio_open2(&io, url, flags, &muxer.interrupt_callback, options);
  if (error < 0) return error_ = error;
  paths_[io] = url;
  return 0;
}

int HlsFiles::close(AVIOContext* io) {
  const auto found = paths_.extract(io);
  const std::string path = found ? found.mapped() : "";
  avio_flush(io);
  int error = io->error;
  const int closed = avio_close(io);
  if (error >= 0) error = closed;
  if (error >= 0) error = putOnDisk(path);
  if (error >= 0) return 0;
  ::unlink(path.c_str());
  if (error_ == 0) error_ = error;
  return error;
}

}  // namespace zel

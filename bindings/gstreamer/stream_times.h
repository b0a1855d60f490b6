#pragma once

#include <ZELTarkaSDK/MediaPacket.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace zel::gst {

// Places a stream's pictures and sound on the running time of a pipeline. The camera's clock gives the distances; the
// arrival of a picture fixes where they begin: at first, after a break of the stream, and after a pause. Both tracks
// always share that begin, and neither goes back.
//
// Units:  of the stream microseconds, of the running time nanoseconds.
// Thread: one.
class StreamTimes {
 public:
  struct Placed {
    std::uint64_t time = 0;
    bool isFirst = false;  // behind a begin
  };

  // The next picture fixes a new begin.
  void restart();

  // A packet has arrived. begins: it may be the first, as a key picture. at: the running time.
  void arrived(const MediaPacket& packet, bool begins, std::uint64_t at);

  // Where something of that time belongs; nothing before the begin.
  std::optional<Placed> place(Track track, std::int64_t time, std::uint64_t duration);

 private:
  struct Line {
    std::uint64_t next = 0;       // the least that the next one can have
    bool isFirst = true;          // nothing since the begin
    bool breakIsAwaited = false;  // the other track has told the break that this one is about to tell
  };
  static std::size_t number(Track track) { return track == Track::video ? 0 : 1; }
  void begin(std::int64_t time, std::uint64_t at);

  std::optional<std::int64_t> shift_;  // from the stream's time to the running time, in nanoseconds
  std::uint64_t end_ = 0;              // of all that was placed
  std::array<Line, 2> lines_;
};

}  // namespace zel::gst

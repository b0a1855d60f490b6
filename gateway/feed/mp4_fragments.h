#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <ZELTarkaSDK/MediaPacket.h>

#include "gateway/feed/stream_description.h"

namespace zel::gateway {

// The init segment of a fragmented MP4: ftyp, and a moov that describes both tracks and holds no picture. The parameter
// sets stand in it alone, and its colr box states the colour, also where the SPS leaves it open: browsers take such a
// stream for something else.
std::vector<std::uint8_t> mp4Beginning(const StreamDescription& description);

// Makes fragments, a moof and its mdat for each picture and each AAC frame, for a track that only goes on: tfdt never
// goes back, and durations are nominal ones, since the next picture is not known when a fragment is sent.
//
// Thread: one at a time.
class Mp4Fragments {
 public:
  // Units: packet.time is the stream's, in microseconds, and grows with each packet of its track.
  //
  // Errors: nothing for a picture without slices, for an empty frame, and for sound that the description has not.
  std::optional<std::vector<std::uint8_t>> fragment(const MediaPacket& packet, const StreamDescription& description);

 private:
  std::uint64_t soundTime(std::int64_t time, int rate);

  std::uint32_t sequence_ = 0;
  // Units: samples.
  std::optional<std::uint64_t> newestSound_;
  std::uint64_t nextSound_ = 0;  // where that frame ends
};

}  // namespace zel::gateway

#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <ZELTarkaSDK/MediaPacket.h>
#include <ZELTarkaSDK/ZELData.h>

namespace zel::gateway {

enum class FeedForm {
  mp4,    // fragmented MP4: an init segment, then a fragment for each picture and each frame of sound
  units,  // records: u32 length of what follows, u8 kind, u8 flags, s64 microseconds, payload; little-endian
};

// What stands before a key picture, for viewers that do not have it.
struct FeedBeginning {
  std::uint64_t headers = 0;  // counts each change of the stream's headers,
  std::uint64_t version = 0;  // and each of them or of the epoch
  ZELData mp4;                // the init segment
  ZELData json;               // the description
};

// One picture or frame of sound, as all viewers share it.
struct FeedPiece {
  MediaPacket packet;  // at its time in the feed; a key picture with its parameter sets
  std::shared_ptr<const FeedBeginning> beginning;
  std::optional<ZELData> fragment;  // its MP4; absent while nobody looks in that form, empty where it has none
};

}  // namespace zel::gateway

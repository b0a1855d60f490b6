#pragma once

#include "apps/zelcam/muxing/libav.h"
#include "apps/zelcam/muxing/media_packet.h"

namespace zel::app {

inline constexpr int kVideoStream = 0, kAudioStream = 1;

// Gives the muxer its two streams, the video with the word that it is spherical where it is.
// Errors: false where there is no memory, or the sound is of a kind that is not known.
bool addStreams(AVFormatContext& muxer, const StreamHeaders& headers);

// Tells players that the pictures are equirectangular.
// Errors: false where there is no memory.
bool markSpherical(AVStream& stream);

// The packet as the muxer takes it, with a copy of the bytes.
// Errors: null where there is no memory.
PacketPtr packetFor(const AVFormatContext& muxer, const MediaPacket& packet);

}  // namespace zel::app

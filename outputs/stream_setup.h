#pragma once

#include <ZELTarkaSDK/MediaPacket.h>
#include "outputs/libav.h"

namespace zel {

inline constexpr int kVideoStream = 0, kAudioStream = 1;

// Adds the two streams to the muxer, and marks the video if it is spherical.
// Errors: false if memory runs out, or the sound's format is unknown.
bool addStreams(AVFormatContext& muxer, const StreamHeaders& headers);

// Tells players that the pictures are equirectangular.
//
// Errors: false where there is no memory.
bool markSpherical(AVStream& stream);

// The packet as the muxer takes it, with a copy of the bytes.
//
// Errors: null where there is no memory.
PacketPtr packetFor(const AVFormatContext& muxer, const MediaPacket& packet);

}  // namespace zel

#pragma once

#include <ZELTarkaSDK/MediaPacket.h>

#include "outputs/libav.h"

namespace zel {

inline constexpr int kVideoStream = 0, kAudioStream = 1;

// Adds the two streams to the muxer, and marks the video if it is spherical.
// Errors: false if memory runs out, or the sound's format is unknown.
bool addStreams(AVFormatContext& muxer, const StreamHeaders& headers);

// Marks the pictures as equirectangular for players.
//
// Errors: false if memory runs out.
bool markSpherical(AVStream& stream);

// The packet for the muxer, with a copy of the bytes.
//
// Errors: null if memory runs out.
PacketPtr packetFor(const AVFormatContext& muxer, const MediaPacket& packet);

}  // namespace zel

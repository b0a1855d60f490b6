#pragma once

#include <ZELTarkaSDK/MediaPacket.h>
#include <ZELTarkaSDK/platform/pixel_buffer.h>
#include <gst/gst.h>

#include <cstdint>

namespace zel::gst {

// What the two pads can give at all.
inline constexpr const char* kVideoCaps =
    "video/x-h264, stream-format=(string)byte-stream, alignment=(string)au, width=(int)[ 1, max ], "
    "height=(int)[ 1, max ], framerate=(fraction)[ 0/1, max ]; "
    "video/x-raw, format=(string)NV12, width=(int)[ 1, max ], height=(int)[ 1, max ], "
    "framerate=(fraction)[ 0/1, max ]";
inline constexpr const char* kAudioCaps =
    "audio/mpeg, mpegversion=(int)4, stream-format=(string)raw, framed=(boolean)true, rate=(int)[ 1, max ], "
    "channels=(int)[ 1, max ]";

// The caps of a stream's pictures and sound, and of raw pictures such as this one.
//
// Owner:  the caller.
//
// Units: pictures a second.
GstCaps* capsOfVideo(const StreamHeaders& headers, int rate);
GstCaps* capsOfAudio(const StreamHeaders& headers);
GstCaps* capsOfPictures(const platform::PixelBuffer& picture, int rate);

}  // namespace zel::gst

#pragma once

#include <cstdint>
#include <span>

#include <ZELTarkaSDK/platform/export.h>

// Receives the camera's encoded video and audio.
// Units:  timestamps in milliseconds.
// Owner:  all bytes are valid during the call only.
// Thread: session thread, which continues reading after the return.
class ZEL_EXPORT ZELCameraMediaDataDelegate {
 public:
  using Bytes = std::span<const std::uint8_t>;

  virtual ~ZELCameraMediaDataDelegate() = default;

  // onH264Nalu:size:keyFrame:timestamp: - one slice, with its 4-byte start code.
  virtual void onH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) = 0;

  // onSps:spsSize:pps:ppsSize: - the parameter sets, without start code; again with every PPS that the camera sends.
  virtual void onSps(Bytes sps, Bytes pps) = 0;

  // onAACHeader:size: - the AudioSpecificConfig of 2 bytes, before every frame.
  virtual void onAACHeader(Bytes header) = 0;

  // onAACAdts:size:timestamp: - one AAC frame, without its ADTS header.
  virtual void onAACAdts(Bytes data, std::int64_t timestamp) = 0;
};

#pragma once

#include <cstdint>
#include <span>

#include <ZELTarkaSDK/ZELError.h>
#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/platform/pixel_buffer.h>

// Receives everything that a live data source produces.
// Units:  timestamps in milliseconds since the first sound of the run.
// Owner:  bytes are valid during the call only; keep the reference to keep a picture.
class ZEL_EXPORT ZELLiveDataSourceProtocol {
 public:
  using Bytes = std::span<const std::uint8_t>;

  virtual ~ZELLiveDataSourceProtocol() = default;

  // sourceOnError: - see the codes in ZELLiveDataSource.h.
  // Thread: main queue.
  virtual void sourceOnError(const ZELError& error) = 0;

  // sourceOnRawPixelBuffer:timestamp: - a picture as the camera sent it. Optional.
  // Thread: decode thread.
  virtual void sourceOnRawPixelBuffer(const zel::platform::PixelBufferRef& /*pixelBuffer*/,
                                      std::int64_t /*timestamp*/) {}

  // sourceOnStitchPixelBuffer:timestamp: - a stitched picture. Optional.
  // Thread: render thread; do not stop the source from inside: stopping waits for this thread.
  virtual void sourceOnStitchPixelBuffer(const zel::platform::PixelBufferRef& /*pixelBuffer*/,
                                         std::int64_t /*timestamp*/) {}

  // sourceOnH264Header:spsSize:pps:ppsSize: - the parameter sets without start code, once a run.
  // Thread: the encoder's; do not stop the source from inside. Also holds for sourceOnH264Nalu.
  virtual void sourceOnH264Header(Bytes sps, Bytes pps) = 0;

  // sourceOnH264Nalu:size:keyFrame:timestamp: - one unit behind its start code of 4 bytes.
  virtual void sourceOnH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) = 0;

  // sourceOnAACHeader:size: - the AudioSpecificConfig, once a run.
  // Thread: session thread. Also holds for sourceOnAACData.
  virtual void sourceOnAACHeader(Bytes header) = 0;

  // sourceOnAACData:size:timestamp: - one AAC frame.
  virtual void sourceOnAACData(Bytes data, std::int64_t timestamp) = 0;
};

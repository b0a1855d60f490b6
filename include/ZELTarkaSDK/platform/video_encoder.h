#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace zel::platform {

// A point of time: value / timescale seconds.
struct MediaTime {
  std::int64_t value = 0;
  std::int32_t timescale = 1;

  bool operator==(const MediaTime&) const = default;
};

// Units:  pixels; pictures a second. The encoder defines the bitrate's unit.
struct VideoEncoderSettings {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t bitrate = 0;
  std::int32_t fps = 0;

  bool operator==(const VideoEncoderSettings&) const = default;
};

// Encodes pictures to H.264.
// Owner:  the destructor waits for a callback in progress and destroys both callbacks; none is called after it.
// Thread: one at a time. Callbacks run on a thread of the encoder's choice, one at a time.
class VideoEncoder {
 public:
  // Bytes are valid during the call only. Parameter sets without start code.
  using SpsPpsCallback =
      std::function<void(const std::uint8_t* sps, std::int32_t spsSize, const std::uint8_t* pps, std::int32_t ppsSize)>;
  // data: one NAL unit behind its 4-byte big-endian length; the receiver may change the bytes.
  // time: the picture's.
  using NaluCallback = std::function<void(std::uint8_t* data, std::int32_t size, bool keyFrame, MediaTime time)>;

  virtual ~VideoEncoder() = default;

  // Opens the encoder.
  // Errors: false when the settings cannot be met.
  virtual bool open() = 0;

  // Sets the receivers of the output, after open() and before the first picture. Without a receiver the output is
  // dropped.
  virtual void setSpsPpsCallback(SpsPpsCallback callback) = 0;
  virtual void setNaluCallback(NaluCallback callback) = 0;

  // Queues a picture; its units are delivered later, through the callbacks.
  // Errors: false when it was not accepted; the same picture may be retried.
  virtual bool encodeImage(const PixelBufferRef& picture, MediaTime time) = 0;
};

// Creates encoders.
// Owner:  must outlive them.
// Thread: any thread.
class VideoEncoders {
 public:
  virtual ~VideoEncoders() = default;

  // Errors: null when none can be created; most faults of the settings show in open().
  virtual std::unique_ptr<VideoEncoder> create(const VideoEncoderSettings& settings) = 0;
};

}  // namespace zel::platform

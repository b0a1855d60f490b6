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

// Units:  pixels; pictures a second. The encoder says what the bitrate counts.
struct VideoEncoderSettings {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t bitrate = 0;
  std::int32_t fps = 0;

  bool operator==(const VideoEncoderSettings&) const = default;
};

// Makes H.264 of pictures.
// Owner:  its destructor waits for a callback in progress, and lets go of both callbacks; none is called after it.
// Thread: one at a time, but for the callbacks, which run on a thread of the encoder's choice, one at a time.
class VideoEncoder {
 public:
  // Bytes are valid during the call only. Parameter sets without start code.
  using SpsPpsCallback =
      std::function<void(const std::uint8_t* sps, std::int32_t spsSize, const std::uint8_t* pps, std::int32_t ppsSize)>;
  // data: one NAL unit behind its length of 4 bytes, highest first; the receiver may change the bytes.
  // time: the picture's.
  using NaluCallback = std::function<void(std::uint8_t* data, std::int32_t size, bool keyFrame, MediaTime time)>;

  virtual ~VideoEncoder() = default;

  // Gets ready.
  // Errors: false where the settings cannot be met.
  virtual bool open() = 0;

  // Who gets the output; set after open() and before the first picture. Without a receiver the output is dropped.
  virtual void setSpsPpsCallback(SpsPpsCallback callback) = 0;
  virtual void setNaluCallback(NaluCallback callback) = 0;

  // Takes a picture; its units come later, through the callbacks.
  // Errors: false where it was not taken; the same picture may be tried again.
  virtual bool encodeImage(const PixelBufferRef& picture, MediaTime time) = 0;
};

// Makes encoders.
// Owner:  must outlive them.
// Thread: any thread.
class VideoEncoders {
 public:
  virtual ~VideoEncoders() = default;

  // Errors: null where there can be none; most faults of the settings show in open().
  virtual std::unique_ptr<VideoEncoder> create(const VideoEncoderSettings& settings) = 0;
};

}  // namespace zel::platform

#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace zel::platform {

// A picture and the timestamp of its unit. Null pixels: no picture.
struct DecodedPicture {
  PixelBufferRef pixelBuffer;
  std::int64_t timestamp = 0;
};

enum class DecodeStatus {
  picture,         // the result holds a picture
  kept,            // the unit was accepted; its picture, or one that is displayed before it, is not complete yet
  noPicture,       // no picture: the unit is broken, or the picture that it completes is
  sessionInvalid,  // the session cannot decode any more; create a new one
};

struct DecodeResult {
  DecodeStatus status = DecodeStatus::noPicture;
  DecodedPicture picture;
};

// A decompression session for one H.264 stream.
// Thread: one at a time.
class VideoDecoder {
 public:
  using Bytes = std::span<const std::uint8_t>;

  virtual ~VideoDecoder() = default;

  // Decodes one NAL unit synchronously. unit: a 4-byte big-endian length, then that many bytes from the NAL header on.
  // A call returns at most one picture, in display order, normally in the call that completes it. With reordering or
  // several units a picture, it may come in a later call, with the timestamp of the picture's own first unit. Reordered
  // pictures share the timestamps: the first one displayed gets the earliest. At most as many units in a row are `kept`
  // as the picture has macroblocks, since it cannot have more slices.
  // Units:  timestamp in the caller's units; returned unchanged.
  // Owner:  the unit is read during the call only.
  // Errors: any broken bytes give noPicture.
  virtual DecodeResult decode(Bytes unit, std::int64_t timestamp) = 0;

  // Ends the stream: returns the pictures that are still held back, one a call, in order. No picture when there are no
  // more.
  virtual DecodedPicture flush() = 0;
};

enum class DecoderCreationStage { description, session };

// A new session, or the step that failed and the platform's error number.
struct DecoderCreation {
  std::unique_ptr<VideoDecoder> decoder;
  DecoderCreationStage failedAt = DecoderCreationStage::session;
  std::int32_t status = 0;
};

// Creates decompression sessions.
// Owner:  must outlive the sessions.
// Thread: any thread.
class VideoDecoders {
 public:
  virtual ~VideoDecoders() = default;

  // A session for a stream with these parameter sets, given without start code or length.
  // Owner:  the bytes are read during the call only.
  // Errors: no decoder when the sets are invalid or the platform cannot decode such a stream.
  virtual DecoderCreation create(VideoDecoder::Bytes sps, VideoDecoder::Bytes pps) = 0;
};

}  // namespace zel::platform

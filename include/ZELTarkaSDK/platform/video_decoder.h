#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace zel::platform {

// A picture and the time of the unit that it came from. Without pixels there is no picture.
struct DecodedPicture {
  PixelBufferRef pixelBuffer;
  std::int64_t timestamp = 0;
};

enum class DecodeStatus {
  picture,         // the result holds a picture
  kept,            // the unit is good so far: its picture, or one that is shown before it, is not whole yet
  noPicture,       // the unit gave none: it is broken, or the picture that it ends is
  sessionInvalid,  // the session can decode nothing any more; a new one must be created
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

  // Decodes one unit before it returns. unit: a 4-byte big-endian length, then that many bytes from the NAL header on.
  // At most one picture comes out of a call, in display order. It comes in the call that completes it; a stream whose
  // pictures are reordered or consist of several units may give it in a later one, with the timestamp of its own first
  // unit. Pictures that are reordered share their timestamps out: the first one shown gets the first that came.
  // No more units of a picture are kept in a row than it has macroblocks, as it cannot have more slices.
  // Units:  timestamp in the caller's units; it is handed back unchanged.
  // Owner:  the unit is needed during the call only.
  // Errors: broken bytes give noPicture, whatever they are.
  virtual DecodeResult decode(Bytes unit, std::int64_t timestamp) = 0;

  // Ends the stream: gives the pictures still held back, one a call, in order. No picture when there are no more.
  virtual DecodedPicture flush() = 0;
};

enum class DecoderCreationStage { description, session };

// A new session; where there is none, the step that failed and the platform's own number for the reason.
struct DecoderCreation {
  std::unique_ptr<VideoDecoder> decoder;
  DecoderCreationStage failedAt = DecoderCreationStage::session;
  std::int32_t status = 0;
};

// Makes decompression sessions.
// Owner:  must outlive the sessions.
// Thread: any thread.
class VideoDecoders {
 public:
  virtual ~VideoDecoders() = default;

  // A session for the stream that these parameter sets describe, given without start code or length.
  // Owner:  the bytes are needed during the call only.
  // Errors: no decoder when the sets make no sense or the platform can decode no such stream.
  virtual DecoderCreation create(VideoDecoder::Bytes sps, VideoDecoder::Bytes pps) = 0;
};

}  // namespace zel::platform

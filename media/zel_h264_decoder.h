#pragma once

#include <cstdint>
#include <memory>

#include <ZELTarkaSDK/platform/video_decoder.h>

#include "base/wire.h"

// Decodes H.264 units, one a call, and recreates its session after errors.
// Owner:  the decoders must outlive the object.
// Thread: one at a time.
class ZELH264Decoder {
 public:
  // initWidthSps:spsSize:pps:ppsSize: ("Width" is the interface's spelling) - copies both parameter sets, given without
  // start code.
  // Errors: null when no session can be created for them; a line on standard error says why. std::bad_alloc where
  //         memory ends.
  static std::unique_ptr<ZELH264Decoder> initWidthSps(zel::platform::VideoDecoders& decoders, zel::ByteView sps,
                                                      zel::ByteView pps);
  ZELH264Decoder(const ZELH264Decoder&) = delete;
  ZELH264Decoder& operator=(const ZELH264Decoder&) = delete;

  // createDecompressionSessionWithSps:spsSize:pps:ppsSize: - false, and a line on standard error, when none can be
  // created.
  bool createDecompressionSessionWithSps(zel::ByteView sps, zel::ByteView pps);
  void releaseDecompressionSession() { session_.reset(); }

  // createPixelBufferUseDecodedData:size: - as decodeFrame, but a unit below 4 bytes gives no picture and does not
  // count as an error.
  zel::platform::DecodedPicture createPixelBufferUseDecodedData(zel::ByteView unit, std::int64_t timestamp);

  // decodeFrame:dataSize: - decodes a unit: a 4-byte big-endian length, then the NAL header and the payload.
  // Units:  timestamp in milliseconds; a picture has that of its own unit.
  // Errors: no picture. The session is recreated at once when it is invalid, and after 31 failures in a row. A unit of
  //         an incomplete picture is not a failure.
  zel::platform::DecodedPicture decodeFrame(zel::ByteView unit, std::int64_t timestamp);

  // The next picture that is still held back at the end of a stream with reordering.
  zel::platform::DecodedPicture flush();

  // Whether every unit is refused until the next key unit.
  bool isWaitIFrame() const { return isWaitIFrame_; }
  // Failed units in a row. A unit of an incomplete picture does not change it.
  std::int32_t decodeContinuousError() const { return decodeContinuousError_; }

 private:
  ZELH264Decoder(zel::platform::VideoDecoders& decoders, zel::ByteView sps, zel::ByteView pps);
  bool createSession(zel::ByteView sps, zel::ByteView pps);
  void recreateSession();
  zel::platform::DecodeResult decodeInSession(zel::ByteView unit, std::int64_t timestamp);
  void countFailure();

  zel::platform::VideoDecoders& decoders_;
  const zel::Bytes sps_;
  const zel::Bytes pps_;
  std::unique_ptr<zel::platform::VideoDecoder> session_;
  bool isWaitIFrame_ = true;
  std::int32_t decodeContinuousError_ = 0;
};

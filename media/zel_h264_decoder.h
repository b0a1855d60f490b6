#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include <ZELTarkaSDK/platform/video_decoder.h>
#include "base/wire.h"

// Decodes H.264 units, one a call, and mends its session where that fails.
// Owner:  the decoders must outlive the object.
// Thread: one at a time.
class ZELH264Decoder {
 public:
  // initWidthSps:spsSize:pps:ppsSize: ("Width" is the interface's spelling) - copies both parameter sets, which come
  // without start code.
  // Errors: null where no session can be made of them; a line on standard error says why. std::bad_alloc where memory
  //         ends.
  static std::unique_ptr<ZELH264Decoder> initWidthSps(zel::platform::VideoDecoders& decoders, zel::ByteView sps,
                                                      zel::ByteView pps);
  ZELH264Decoder(const ZELH264Decoder&) = delete;
  ZELH264Decoder& operator=(const ZELH264Decoder&) = delete;

  // createDecompressionSessionWithSps:spsSize:pps:ppsSize: - false, and a line on standard error, where there is none.
  bool createDecompressionSessionWithSps(zel::ByteView sps, zel::ByteView pps);
  void releaseDecompressionSession() { session_.reset(); }

  // createPixelBufferUseDecodedData:size: - as decodeFrame, but a unit below 4 bytes gives no picture and counts for
  // nothing.
  zel::platform::DecodedPicture createPixelBufferUseDecodedData(zel::ByteView unit, std::int64_t timestamp);

  // decodeFrame:dataSize: - decodes a unit: its length in 4 bytes, highest first, then the NAL header and the rest.
  // Units:  timestamp in milliseconds; a picture brings that of its own unit.
  // Errors: no picture, and the session may be made anew: at once where it became invalid, and after 31 failures in a
  //         row. A unit of a picture that is not whole yet is none.
  zel::platform::DecodedPicture decodeFrame(zel::ByteView unit, std::int64_t timestamp);

  // The next of the pictures that a stream with reordering still holds back at its end.
  zel::platform::DecodedPicture flush();

  // Whether every unit is refused until a key unit comes.
  bool isWaitIFrame() const { return isWaitIFrame_; }
  // Units in a row that failed. One that is kept for a picture that is not whole yet counts neither up nor down.
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

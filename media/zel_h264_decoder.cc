#include "media/zel_h264_decoder.h"

#include <cstdio>
#include <limits>
#include <utility>

#include "base/has_memory_for.h"
#include "media/nal_unit.h"

using zel::platform::DecodedPicture;
using zel::platform::DecoderCreation;
using zel::platform::DecoderCreationStage;
using zel::platform::DecodeStatus;

namespace {

constexpr std::size_t kShortestUnit = 4;
constexpr std::int32_t kFailuresBeforeRecreation = 30;  // the 31st recreates: compared before incremented

void printFailure(const DecoderCreation& creation) {
  if (creation.failedAt == DecoderCreationStage::description) {
    std::fprintf(stderr, "create description err:%d\n", static_cast<int>(creation.status));
  } else if (creation.status != 0) {
    std::fprintf(stderr, "create session err:%d\n", static_cast<int>(creation.status));
  } else {
    std::fprintf(stderr, "err decode session null\n");
  }
}

}  // namespace

ZELH264Decoder::ZELH264Decoder(zel::platform::VideoDecoders& decoders, zel::ByteView sps, zel::ByteView pps)
    : decoders_(decoders), sps_(sps.begin(), sps.end()), pps_(pps.begin(), pps.end()) {}

std::unique_ptr<ZELH264Decoder> ZELH264Decoder::initWidthSps(zel::platform::VideoDecoders& decoders, zel::ByteView sps,
                                                             zel::ByteView pps) {
  std::unique_ptr<ZELH264Decoder> decoder(new ZELH264Decoder(decoders, sps, pps));
  return decoder->createSession(decoder->sps_, decoder->pps_) ? std::move(decoder) : nullptr;
}

bool ZELH264Decoder::createDecompressionSessionWithSps(zel::ByteView sps, zel::ByteView pps) {
  bool isMade = false;
  zel::ifMemoryAllows([&] { isMade = createSession(sps, pps); });
  return isMade;
}

bool ZELH264Decoder::createSession(zel::ByteView sps, zel::ByteView pps) {
  DecoderCreation creation = decoders_.create(sps, pps);
  session_ = std::move(creation.decoder);
  if (!session_) printFailure(creation);
  return session_ != nullptr;
}

void ZELH264Decoder::recreateSession() {
  releaseDecompressionSession();
  createDecompressionSessionWithSps(sps_, pps_);
}

DecodedPicture ZELH264Decoder::createPixelBufferUseDecodedData(zel::ByteView unit, std::int64_t timestamp) {
  if (unit.size() < kShortestUnit) return {};
  return decodeFrame(unit, timestamp);
}

DecodedPicture ZELH264Decoder::decodeFrame(zel::ByteView unit, std::int64_t timestamp) {
  if (!session_) {
    // Deliberate: this unit is lost, and the new session does not wait for a key unit.
    recreateSession();
    return {};
  }
  if (isWaitIFrame_ && !zel::isIdr(unit)) return {};
  isWaitIFrame_ = false;
  auto [status, picture] = decodeInSession(unit, timestamp);
  if (status == DecodeStatus::kept) return {};  // counts neither as failure nor as success
  if (status == DecodeStatus::sessionInvalid) {
    recreateSession();
    isWaitIFrame_ = true;
  }
  if (status == DecodeStatus::picture && picture.pixelBuffer) {
    decodeContinuousError_ = 0;
    return std::move(picture);
  }
  countFailure();
  return {};
}

// A unit that finds no memory gives no picture, as a broken one does.
zel::platform::DecodeResult ZELH264Decoder::decodeInSession(zel::ByteView unit, std::int64_t timestamp) {
  zel::platform::DecodeResult result;
  zel::ifMemoryAllows([&] { result = session_->decode(unit, timestamp); });
  return result;
}

// Deliberate: only a picture resets the count, so after the 31st every further failure recreates the session.
void ZELH264Decoder::countFailure() {
  const bool isOneTooMany = decodeContinuousError_ >= kFailuresBeforeRecreation;
  if (decodeContinuousError_ < std::numeric_limits<std::int32_t>::max()) ++decodeContinuousError_;
  if (!isOneTooMany) return;
  recreateSession();
  isWaitIFrame_ = true;
}

DecodedPicture ZELH264Decoder::flush() {
  DecodedPicture picture;
  if (session_) zel::ifMemoryAllows([&] { picture = session_->flush(); });
  return picture;
}

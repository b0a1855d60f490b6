#include "facade/decoders_on_demand.h"

#include "media/nal_unit.h"

namespace zel {

class DecodersOnDemand::Decoder final : public platform::ForwardingVideoDecoder {
 public:
  Decoder(std::unique_ptr<VideoDecoder> wrapped, std::shared_ptr<const std::atomic<int>> lookers)
      : ForwardingVideoDecoder(std::move(wrapped)), lookers_(std::move(lookers)) {}

  // A unit that nobody needs is as one whose picture is not complete yet.
  platform::DecodeResult decode(Bytes unit, std::int64_t timestamp) override {
    const bool isWanted = lookers_->load() > 0;
    rested_ = !isWanted || (rested_ && !isIdr(unit));
    if (rested_) return {platform::DecodeStatus::kept, {}};
    return ForwardingVideoDecoder::decode(unit, timestamp);
  }

 private:
  const std::shared_ptr<const std::atomic<int>> lookers_;
  bool rested_ = false;  // since the last key picture
};

platform::DecoderCreation DecodersOnDemand::create(platform::VideoDecoder::Bytes sps,
                                                   platform::VideoDecoder::Bytes pps) {
  platform::DecoderCreation made = ForwardingVideoDecoders::create(sps, pps);
  if (made.decoder) made.decoder = std::make_unique<Decoder>(std::move(made.decoder), lookers_);
  return made;
}

}  // namespace zel

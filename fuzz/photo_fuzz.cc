// Photo payloads on hostile bytes: the first byte chooses a single photo or a series, each block is one payload. The
// handler is called at most once, and exactly once when the capture fails in the end.

#include "capture/zel_photo_data_parser.h"
#include "fuzz/fuzz_input.h"
#include "platform/simulated/simulated_platform.h"

using zel::fuzz::Input;

namespace {

std::unique_ptr<ZELPhotoDataParser> capture(zel::platform::Queue& queue, std::uint8_t kind,
                                            std::function<void()> call) {
  if (kind == 0) {
    return ZELPhotoDataParser::initWithShutterBlock(queue, [call](const auto& error, const auto&, const auto& image) {
      zel::fuzz::require(error.has_value() != image.has_value());
      call();
    });
  }
  return ZELPhotoDataParser::initWithAEBShutterCount(
      queue, kind, [call](const auto& error, const auto& names, const auto& images) {
        zel::fuzz::require(error ? !images : images->size() >= names.size());
        call();
      });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  zel::platform::SimulatedPlatform host;
  zel::fuzz::Calls calls;
  std::size_t number = 0;
  const auto parser = capture(host.ports().queues.mainQueue(), input.byte() % 8, calls.expect(number));
  while (!input.empty()) parser->parserData(input.block(60));  // around the shortest payload, 65
  parser->replyBlockWithError(zelOSStatusError(kZELErrorNotConnected));
  host.runUntilIdle();
  zel::fuzz::require(calls.called(number));
  return 0;
}

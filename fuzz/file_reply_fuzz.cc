// File replies on hostile bytes, some while files are on their way. A handler is called at most once, and the last of
// each path, once the link is lost, exactly once.

#include <map>
#include <string>

#include "base/text.h"
#include "capture/zel_ucd_file.h"
#include "fuzz/fuzz_input.h"
#include "platform/simulated/simulated_platform.h"

using zel::fuzz::Input;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  zel::platform::SimulatedPlatform host;
  zel::fuzz::Calls calls;
  std::map<std::string, std::size_t> last;  // by the path that is sent
  std::string sent;
  ZELUCDFile file([&](const ZELData& frame) { sent = zel::asText(frame.bytes().subspan(10)); },
                  host.ports().queues.mainQueue());
  while (!input.empty()) {
    if (input.byte() % 4 != 0) {
      file.parserUCD(input.block());
      continue;
    }
    const std::string path(zel::asText(input.take(input.byte() % 64)));
    std::size_t number = 0;
    file.sendFileWithType(1, path, ZELData(), [call = calls.expect(number)](const auto&) { call(); });
    if (sent.front() != '\0') last[sent] = number;  // nobody waits for a file whose path comes to nothing
  }
  file.replyAllBlockWithErrorCode(kZELErrorNotConnected);
  host.runUntilIdle();
  for (const auto& [path, number] : last) zel::fuzz::require(calls.called(number));
  return 0;
}

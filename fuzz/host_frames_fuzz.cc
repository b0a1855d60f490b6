// What the simulated camera reads of a hostile host: the first byte is the size of the reads, the rest the stream. Its
// frames are the same as of one read, and together no longer than the stream.

#include "simulator/host_frames.h"

#include "fuzz/fuzz_input.h"

namespace {

using zel::simulator::Bytes;
using zel::simulator::HostFile;
using zel::simulator::HostFrames;
using zel::simulator::HostMessage;

Bytes framesOf(zel::ByteView stream, std::size_t read) {
  HostFrames frames;
  Bytes seen;
  for (std::size_t at = 0; at < stream.size(); at += read) {
    frames.append(stream.subspan(at, std::min(read, stream.size() - at)));
    while (const auto frame = frames.next()) {
      const auto* message = std::get_if<HostMessage>(&*frame);
      const Bytes& bytes = message != nullptr ? message->body : std::get<HostFile>(*frame).payload;
      seen.insert(seen.end(), bytes.begin(), bytes.end());
      seen.push_back(message != nullptr ? static_cast<std::uint8_t>(message->code) : std::uint8_t{0});
    }
  }
  return seen;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zel::fuzz::Input input(data, size);
  const std::size_t read = 1 + input.byte();
  const zel::ByteView stream = input.take(size);
  const Bytes seen = framesOf(stream, read);
  zel::fuzz::require(seen.size() <= stream.size());
  zel::fuzz::require(seen == framesOf(stream, size + 1));
  return 0;
}

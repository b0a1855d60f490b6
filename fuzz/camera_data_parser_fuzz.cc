// The de-multiplexer on hostile bytes: the first byte chooses the mode, the way of parsing and the size of the reads,
// the rest is the stream.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "tests/transport/recording_consumers.h"
#include "transport/camera_data_parser.h"

namespace {

using zel::test::Log;
using zel::test::RecordingFile;
using zel::test::RecordingLink;
using zel::test::RecordingPhoto;
using zel::test::RecordingPlayer;

void feed(CameraDataParser& parser, zel::ByteView stream, std::size_t read, bool inPlace) {
  while (!stream.empty()) {
    const zel::ByteView chunk = stream.first(std::min(read, stream.size()));
    if (inPlace) {
      parser.parserData(chunk);
    } else {
      parser.appendBytes(chunk.data(), chunk.size());
      parser.parserData();
    }
    stream = stream.subspan(chunk.size());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  Log log;
  RecordingLink link;
  CameraDataParser parser;
  const auto player = std::make_shared<RecordingPlayer>(log);
  parser.setAccessory(&link);
  parser.setPreviewPlayer(player);
  parser.setPhotoParser(std::make_shared<RecordingPhoto>(log));
  parser.setUcdFile(std::make_shared<RecordingFile>(log));
  parser.registerMsgParser(CameraMsgParser(14, [](std::uint64_t, const std::optional<ZELData>&, void*) {}), 0x800B);
  parser.setIsNeedDataSynchronism((data[0] & 1) != 0);
  feed(parser, {data + 1, size - 1}, 1 + (data[0] >> 2), (data[0] & 2) != 0);
  if (parser.data().size() > size) std::abort();
  return 0;
}

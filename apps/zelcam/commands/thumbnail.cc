#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/LinuxMedia.h>
#include <ZELTarkaSDK/ZELThumbnailRender.h>

#include <fmt/format.h>

#include <cstdint>
#include <string>
#include <vector>

#include <ZELTarkaSDK/PictureFile.h>

#include "apps/zelcam/command_line/picture_size.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/link/bus.h"
#include "gateway/media/file.h"

namespace zel::app {
namespace {

using gateway::readFile;

// Replaces three-byte start codes, which many encoders write, by four-byte ones.
ZELData withLongStartCodes(std::span<const std::uint8_t> stream) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(stream.size() + stream.size() / 64);
  std::size_t zeros = 0;
  for (const std::uint8_t byte : stream) {
    if (byte == 1 && zeros == 2) bytes.push_back(0);
    zeros = byte == 0 ? zeros + 1 : 0;
    bytes.push_back(byte);
  }
  return ZELData(std::move(bytes));
}

int save(const platform::PixelBuffer& picture, const Invocation& invocation) {
  const std::string path = invocation.values.text("--output");
  std::string fault;
  if (!savePicture(picture, path, fault)) return complain(kRefused, "thumbnail", fault);
  return tellDone(invocation.settings.json,
                  {{"thumbnail", path}, {"width", picture.width()}, {"height", picture.height()}},
                  fmt::format("{}: {} x {}", path, picture.width(), picture.height()));
}

}  // namespace

int runThumbnail(const Invocation& invocation) {
  const Values& values = invocation.values;
  if (!values.has("--output"))
    return complain(kWrongUsage, "thumbnail", "-o FILE.png tells where the picture shall go");
  if (!pictureFormOf(values.text("--output")))
    return complain(kWrongUsage, "thumbnail", "-o takes FILE.png or FILE.jpg");
  const auto size = values.has("--size") ? pictureSizeIn(values.text("--size")) : PictureSize{1440, 720};
  if (!size)
    return complain(kWrongUsage, "thumbnail",
                    fmt::format("--size takes WIDTHxHEIGHT, each even and from 2 to {}", kLargestPictureSide));
  std::string complaint;
  const auto file = readFile(values.text("FILE"), complaint);
  if (!file) return complain(kWrongUsage, "thumbnail", complaint);

  const auto bus = openBus(invocation.settings);
  if (!bus) return kNoCamera;
  const LinuxMedia media(bus->ports(), {.warn = [](const std::string& fault) { say("zelcam: " + fault); }});
  const auto render = ZELThumbnailRender::initWithRenderWidth(media.ports(), size->width, size->height);
  const ZELData stream = withLongStartCodes(file->bytes());
  auto picture = render->copyPixelBufferWithDecodeH264Data(stream);
  if (!picture) return complain(kRefused, "thumbnail", values.text("FILE") + " has no key frame that can be shown");
  if (values.has("--offset")) picture = render->renderWithh264Data(stream, values.text("--offset"));
  if (!picture) return kRefused;  // the renderer has reported why
  return save(*picture, invocation);
}

}  // namespace zel::app

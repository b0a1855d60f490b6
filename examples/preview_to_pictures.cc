// Saves the first three pictures of the camera's preview: preview1.ppm, preview2.ppm, preview3.ppm.
//
//   preview_to_pictures

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/LinuxMedia.h>
#include <ZELTarkaSDK/PreviewFormat.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <algorithm>
#include <fstream>

#include "connect.h"

namespace {

// Converts to RGB with the picture's colour matrix; the range is always full.
void writePixel(std::ostream& file, double luma, const zel::platform::ColourDifferences& above) {
  for (const double value : {luma + above.red, luma + above.green, luma + above.blue})
    file.put(static_cast<char>(static_cast<std::uint8_t>(std::clamp(value + 0.5, 0.0, 255.0))));
}

struct Saver final : ZELPixelBufferDataProtocol {
  void onPixelBuffer(const zel::platform::PixelBufferRef& picture, std::int64_t) override {  // decode thread
    if (saved == 3) return;
    std::ofstream file("preview" + std::to_string(++saved) + ".ppm", std::ios::binary);
    file << "P6\n" << picture->width() << ' ' << picture->height() << "\n255\n";
    const auto luma = picture->luma(), chroma = picture->chroma();
    for (std::size_t y = 0; y < luma.rows; ++y) {
      for (std::size_t x = 0; x < luma.rowBytes; ++x) {
        const auto* uv = chroma.data + y / 2 * chroma.stride + x / 2 * 2;
        writePixel(file, luma.data[y * luma.stride + x],
                   zel::platform::differencesOf(picture->colour().matrix, uv[0], uv[1]));
      }
    }
    if (saved == 3) done();
  }
  std::function<void()> done;
  int saved = 0;
};

}  // namespace

int main() {
  const auto platform = makePlatform();
  if (!platform) return 1;
  const zel::LinuxMedia media(platform->ports());
  zel::CameraStack stack(media.ports());
  if (!connect(*platform, stack.accessory())) return 1;

  const auto saver = std::make_shared<Saver>();
  saver->done = [&] { platform->stopMainQueue(); };
  const auto player = stack.suitablePreviewPlayer();
  player->setPixelBufferDelegate(saver);
  stack.ucd().msgCmdStartVideoWithVideoRes(zel::kSmallestPreview, {});
  if (platform->runMainQueueFor(20)) return 0;
  return std::cerr << "no picture came\n", 1;
}

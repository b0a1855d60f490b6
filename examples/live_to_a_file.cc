// Records stitched live video: the pictures as H.264, the sound as AAC.
//
//   live_to_a_file FILE.h264 FILE.aac SECONDS

#include <ZELTarkaSDK/AudioConfig.h>
#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/LinuxMedia.h>
#include <ZELTarkaSDK/PreviewFormat.h>
#include <ZELTarkaSDK/ZELLiveDataSource.h>

#include <cstdlib>
#include <fstream>
#include <vector>

#include "connect.h"

namespace {

// Video is delivered on the encode thread, sound on the session thread.
struct Files final : ZELLiveDataSourceProtocol {
  Files(const char* h264, const char* aac) : video(h264, std::ios::binary), sound(aac, std::ios::binary) {}
  void sourceOnError(const ZELError& error) override { std::cerr << error.description.value_or("failed") << '\n'; }
  void sourceOnH264Header(Bytes sps, Bytes pps) override {
    constexpr std::uint8_t kStartCode[] = {0, 0, 0, 1};
    for (const Bytes part : {Bytes(kStartCode), sps, Bytes(kStartCode), pps}) write(video, part);
  }
  void sourceOnH264Nalu(Bytes nalu, bool, std::int64_t) override { write(video, nalu); }  // has its start code
  void sourceOnAACHeader(Bytes header) override { config.assign(header.begin(), header.end()); }
  void sourceOnAACData(Bytes data, std::int64_t) override {
    const auto header = zel::adtsHeaderOf(config, data.size());
    if (!header) return;
    write(sound, *header);
    write(sound, data);
  }
  static void write(std::ostream& file, Bytes bytes) {
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
  std::ofstream video, sound;
  std::vector<std::uint8_t> config;  // the AudioSpecificConfig
};

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) return std::cerr << "usage: live_to_a_file FILE.h264 FILE.aac SECONDS\n", 1;
  const auto platform = makePlatform();
  if (!platform) return 1;
  const zel::LinuxMedia media(platform->ports());
  zel::CameraStack stack(media.ports());
  if (!connect(*platform, stack.accessory())) return 1;
  const auto files = std::make_shared<Files>(arguments[1], arguments[2]);
  const auto source = ZELLiveDataSource::initWitCameraResolution(stack, zel::kSmallestPreview, 1440, 720, 8'000'000);
  source->setDataSourceDelegate(files);
  source->startLiveData();
  platform->runMainQueueFor(std::atof(arguments[3]));
  source->stopLiveData();
  if (source->hasVideo() && files->video.flush() && files->sound.flush()) return 0;
  return std::cerr << "no video came, or it could not be written\n", 1;
}

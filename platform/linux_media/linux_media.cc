#include <ZELTarkaSDK/LinuxMedia.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/platform/ports.h>

#include "platform/ffmpeg/h264_decoder.h"
#include "platform/ffmpeg/h264_encoder.h"
#include "platform/render/stitching_library.h"

namespace zel {
namespace {

// Never destroyed: the decode thread of a destroyed player may still create a session, and is not joined here.
platform::VideoDecoders& lastingDecoders(int threads) {
  using platform::LibavVideoDecoders;
  static const auto* const decoders = [] {
    auto* const all = new std::vector<std::unique_ptr<LibavVideoDecoders>>;
    for (int count = 1; count <= LibavVideoDecoders::kMostThreads; ++count)
      all->push_back(std::make_unique<LibavVideoDecoders>(platform::LibavDecoderOptions{count}));
    return all;
  }();
  return *decoders->at(static_cast<std::size_t>(std::clamp(threads, 1, LibavVideoDecoders::kMostThreads) - 1));
}
platform::VideoEncoders& lastingEncoders() {
  static auto* const encoders = new platform::LibavVideoEncoders;
  return *encoders;
}

void warnOnStandardError(const std::string& fault) { std::fprintf(stderr, "%s\n", fault.c_str()); }

}  // namespace

struct LinuxMedia::State {
  State(const platform::Ports& given, Options options)
      : library(options.warn ? std::move(options.warn) : warnOnStandardError), ports(given) {
    ports.videoDecoders = &lastingDecoders(options.decoderThreads);
    ports.mediaLibrary = &library;
    ports.videoEncoders = &lastingEncoders();
  }

  render::StitchingLibrary library;
  platform::Ports ports;
};

LinuxMedia::LinuxMedia(const platform::Ports& ports) : LinuxMedia(ports, Options()) {}

LinuxMedia::LinuxMedia(const platform::Ports& ports, Options options)
    : state_(std::make_unique<State>(ports, std::move(options))) {}

LinuxMedia::~LinuxMedia() = default;

const platform::Ports& LinuxMedia::ports() const { return state_->ports; }

}  // namespace zel

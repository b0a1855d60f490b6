#include <ZELTarkaSDK/LinuxMedia.h>

#include <cstdio>
#include <utility>

#include "platform/ffmpeg/h264_decoder.h"
#include "platform/ffmpeg/h264_encoder.h"
#include "platform/ports.h"
#include "platform/render/stitching_library.h"

namespace zel {
namespace {

// Never destroyed: the decode thread of a player that has gone may still begin a session, and nobody waits for it here.
platform::VideoDecoders& lastingDecoders() {
  static auto* const decoders = new platform::LibavVideoDecoders;
  return *decoders;
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
    ports.videoDecoders = &lastingDecoders();
    ports.mediaLibrary = &library;
    ports.videoEncoders = &lastingEncoders();
  }

  render::StitchingLibrary library;
  platform::Ports ports;
};

LinuxMedia::LinuxMedia(const platform::Ports& ports, Options options)
    : state_(std::make_unique<State>(ports, std::move(options))) {}

LinuxMedia::~LinuxMedia() = default;

const platform::Ports& LinuxMedia::ports() const { return state_->ports; }

}  // namespace zel

#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "base/mutex.h"
#include "platform/simulated/scripted_media_library.h"
#include "platform/simulated/scripted_video_decoder.h"
#include "platform/simulated/scripted_video_encoder.h"
#include "platform/simulated/simulated_platform.h"
#include "tests/command/command_test.h"
#include "tests/link/simulated_camera.h"

namespace zel::test {

// What reaches the delegate, a line each.
class LiveLog final : public ZELLiveDataSourceProtocol {
 public:
  void sourceOnError(const ZELError& error) override {
    add("error " + error.domain + " " + std::to_string(error.code) + " " + error.description.value_or("?"));
  }
  void sourceOnRawPixelBuffer(const platform::PixelBufferRef& pixelBuffer, std::int64_t timestamp) override {
    add("raw " + picture(*pixelBuffer, timestamp));
  }
  void sourceOnStitchPixelBuffer(const platform::PixelBufferRef& pixelBuffer, std::int64_t timestamp) override {
    add("stitched " + picture(*pixelBuffer, timestamp));
  }
  void sourceOnH264Header(Bytes sps, Bytes pps) override { add("video header " + hexText(sps) + " " + hexText(pps)); }
  void sourceOnH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) override {
    add((keyFrame ? "key unit " : "unit ") + std::to_string(timestamp) + " " + hexText(nalu));
  }
  void sourceOnAACHeader(Bytes header) override { add("sound header " + hexText(header)); }
  void sourceOnAACData(Bytes data, std::int64_t timestamp) override {
    add("sound " + std::to_string(timestamp) + " " + hexText(data));
  }

  // Everything since the last time.
  std::vector<std::string> take() {
    const MutexLock lock(mutex_);
    return std::exchange(lines_, {});
  }
  std::size_t count(std::string_view beginning) const {
    const MutexLock lock(mutex_);
    std::size_t found = 0;
    for (const std::string& line : lines_) found += line.starts_with(beginning) ? 1U : 0U;
    return found;
  }

 private:
  static std::string picture(const platform::PixelBuffer& buffer, std::int64_t timestamp) {
    return std::to_string(timestamp) + " luma " + std::to_string(buffer.luma().data[0]);
  }
  void add(std::string line) {
    const MutexLock lock(mutex_);
    lines_.push_back(std::move(line));
  }

  mutable Mutex mutex_;
  std::vector<std::string> lines_ ZEL_GUARDED_BY(mutex_);
};

inline platform::PixelBufferRef pictureOf(int luma) {
  return platform::MemoryPixelBuffer::filled(4, 2, static_cast<std::uint8_t>(luma), 128, 128);
}

// A camera whose frames arrive, and a live data source, in virtual time; the test answers for the camera.
class LiveTest : public testing::Test {
 protected:
  void SetUp() override {
    openCamera();
    makeSource();
  }
  void openCamera() {
    stack->accessory().openCamera();
    camera = host.plug(cameraDescription());
    host.runUntilIdle();
    send(join(kMarker, kSoundFrame));
    send(kSoundFrame);
    written();
  }
  void makeSource(std::uint64_t resolution = 6) {
    source = ZELLiveDataSource::initWitCameraResolution(*stack, resolution, 160, 80, 8'000'000);
    source->setDataSourceDelegate(log);
  }

  platform::Ports ports() {
    platform::Ports result = host.ports();
    result.videoDecoders = &decoders;
    result.mediaLibrary = &library;
    result.videoEncoders = &encoders;
    return result;
  }

  void send(const Bytes& frames) {
    camera->current()->send(frames);
    host.runUntilIdle();
  }
  // A message of the camera: code and body.
  void answer(std::string_view codeAndBody) {
    Bytes frame;
    const Bytes payload = hex(codeAndBody);
    appendLittleEndian(frame, static_cast<std::uint32_t>(6 + payload.size()));
    send(join(frame, bytes({4, 0}), payload));
  }
  void answerPreview() { answer(kPreviewIsOn); }
  void answerSound() { answer(kSoundIsSwitched); }
  void answerOffset() { answer(kOffset); }
  // All of the start's answers.
  void answerStart() {
    answerPreview();
    answerSound();
    answerOffset();
  }
  void start() {
    source->startLiveData();
    host.runUntilIdle();
    answerStart();
    written();
  }
  // The first sound of a run, at that time of the camera.
  void hearAt(std::int64_t timestamp) {
    source->onAACHeader(hex("1190"));
    source->onAACAdts(hex("AA"), timestamp);
  }
  void see(int luma, std::int64_t timestamp) { source->onPixelBuffer(pictureOf(luma), timestamp); }
  void letThreadsRun() { host.advance(0.05); }

  // What was written since the last time: hexadecimal code and body of each message.
  std::vector<std::string> written() {
    host.runUntilIdle();
    const Bytes all = camera->current()->takeWritten();
    std::vector<std::string> messages;
    for (std::size_t at = 0; at + 8 <= all.size(); at += all[at]) {
      messages.push_back(hexText(ByteView(all).subspan(at + 6, all[at] - 6U)));
    }
    return messages;
  }

  static constexpr std::string_view kPreviewIsOn = "0480 01 06";
  static constexpr std::string_view kPreviewIsOff = "0680 01";
  static constexpr std::string_view kSoundIsSwitched = "0E80 01";
  // valueA 10, valueB 20, valueC 30, one lens of 0.001 to 0.006
  static constexpr std::string_view kOffset =
      "0FC0 01  0A00 1400 1E000000 01 00000000000000"
      "01000000 02000000 03000000 04000000 05000000 06000000 0000000000000000"
      "00000000 00000000 00000000 00000000 00000000 00000000 0000000000000000";
  static constexpr const char* kOffsetText = "1_0.001_0.002_0.003_0.004_0.005_0.006_10_20_30";
  static inline const Bytes kSoundFrame = bytes({7, 0, 0, 0, 2, 0, 5});

  platform::SimulatedPlatform host;
  platform::ScriptedVideoDecoders decoders;
  platform::ScriptedMediaLibrary library;
  platform::ScriptedVideoEncoders encoders;
  std::shared_ptr<platform::ScriptedAccessory> camera;
  std::unique_ptr<CameraStack> stack = std::make_unique<CameraStack>(ports());
  std::shared_ptr<LiveLog> log = std::make_shared<LiveLog>();
  std::shared_ptr<ZELLiveDataSource> source;
};

}  // namespace zel::test

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <ZELTarkaSDK/platform/clock.h>

#include "link/roles.h"
#include "tests/link/bytes.h"

namespace zel::test {

// What reached a consumer, in one line each: "video 2", "photo 100", "videoTime 1005", ...
using Log = std::vector<std::string>;

inline std::string entry(const char* what, ByteView bytes) {
  std::string line = what;
  for (const std::uint8_t byte : bytes) line += ' ' + std::to_string(byte);
  return line;
}

class RecordingPlayer final : public PreviewConsumer {
 public:
  explicit RecordingPlayer(Log& log) : log_(log) {}
  void appendVideoBytes(ByteView bytes) override { log_.push_back(entry("video", bytes)); }
  void appendAudioBytes(ByteView bytes) override { log_.push_back(entry("audio", bytes)); }
  void setNextVideoTimestamp(std::int64_t time) override { log_.push_back("videoTime " + std::to_string(time)); }
  void setNextAudioTimestamp(std::int64_t time) override { log_.push_back("audioTime " + std::to_string(time)); }
  void setImageWidth(std::int32_t width) override { log_.push_back("width " + std::to_string(width)); }
  void setImageHeight(std::int32_t height) override { log_.push_back("height " + std::to_string(height)); }
  void setFps(std::int32_t fps) override { log_.push_back("fps " + std::to_string(fps)); }
  void resetPlayer() override { log_.push_back("reset"); }

 private:
  Log& log_;
};

class RecordingPhoto final : public PhotoConsumer {
 public:
  explicit RecordingPhoto(Log& log) : log_(log) {}
  void parserData(ByteView bytes) override { log_.push_back(entry("photo", bytes)); }
  void replyBlockWithError(const ZELError& error) override {
    log_.push_back("photoError " + std::to_string(error.code));
  }

 private:
  Log& log_;
};

class RecordingFile final : public FileReplyConsumer {
 public:
  explicit RecordingFile(Log& log) : log_(log) {}
  void parserUCD(ByteView bytes) override { log_.push_back(entry("file", bytes)); }

 private:
  Log& log_;
};

// The accessory as the de-multiplexer sees it.
class RecordingLink final : public AccessoryLink {
 public:
  void successCreateSession() override { ++sessions; }
  void receivedData() override {
    ++received;
    if (log != nullptr) log->push_back("received");
  }
  std::int64_t firewareVersion() const override { return firmware; }
  std::int64_t timeOffset() const override { return offset; }
  double absoluteTime() const override { return seconds; }
  void sendSyncTimeCmd() override { ++syncTimeCommands; }
  void updateReceiveSyncTimeCmdTimestamp(std::int64_t time) override {
    syncTimes.push_back(time);
    if (log != nullptr) log->push_back("syncTime " + std::to_string(time));
  }
  void streamPositionLost() override { ++positionsLost; }

  std::int64_t firmware = 192;
  std::int64_t offset = 0;
  double seconds = 0;
  int sessions = 0, received = 0, syncTimeCommands = 0, positionsLost = 0;
  std::vector<std::int64_t> syncTimes;
  Log* log = nullptr;  // where what arrives is listed too
};

}  // namespace zel::test

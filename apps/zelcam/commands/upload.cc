#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/WireConstants.h>

#include <fmt/format.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

#include "apps/zelcam/host/console.h"
#include "apps/zelcam/link/command_camera.h"
#include "gateway/media/file.h"

namespace zel::app {
namespace {

using gateway::readFile;

// A line with percentage, rate and remaining time, if standard error is a terminal.
class ProgressLine {
 public:
  ~ProgressLine() {
    if (isThere_) say("");
  }
  // Thread: any thread, one at a time.
  void show(const TransferProgress& now) {
    const auto time = Clock::now();
    if (!isThere_ || time - shown_ < kProgressInterval) return;
    shown_ = time;
    const double seconds = std::chrono::duration<double>(time - start_).count();
    const auto done = static_cast<double>(now.done), total = static_cast<double>(now.total);
    const double rate = done / seconds;
    showProgress(fmt::format("{:3.0f} %  {:.1f} MB/s  {:.0f} s left", 100 * done / total, rate / 1e6,
                             rate > 0 ? (total - done) / rate : 0));
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds kProgressInterval{200};

  const bool isThere_ = ::isatty(STDERR_FILENO) != 0;
  const Clock::time_point start_ = Clock::now();
  Clock::time_point shown_ = start_;
};

int upload(Camera& camera, const Values& values, const ZELData& file, const Settings& settings) {
  const std::string path =
      values.has("--as") ? values.text("--as") : std::filesystem::path(values.text("FILE")).filename().string();
  const auto line = std::make_shared<ProgressLine>();
  auto asked = camera.upload(
      values.integer("--type").value_or(0), path, file, [line](const TransferProgress& now) { line->show(now); },
      limitsOf(settings));
  sayAsked(settings);
  const auto done = asked.get();
  if (!done) return tellFailure("upload", done.error(), settings);
  return tellDone(settings.json, {{"upload", values.text("FILE")}, {"path", path}, {"bytes", file.size()}},
                  fmt::format("uploaded {} bytes as {}", file.size(), path));
}

}  // namespace

int runUpload(const Invocation& invocation) {
  const Settings& settings = invocation.settings;
  std::string complaint;
  const auto file = readFile(invocation.values.text("FILE"), complaint, kLargestFile);
  if (!file) return complain(kWrongUsage, "upload", complaint);
  return withCamera(settings, [&](Camera& camera) { return upload(camera, invocation.values, *file, settings); });
}

}  // namespace zel::app

#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <fmt/format.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/file.h"
#include "apps/zelcam/link/answer.h"
#include "apps/zelcam/link/bus.h"
#include "apps/zelcam/link/camera_link.h"

namespace zel::app {
namespace {

constexpr double kProgressInterval = 0.2;  // seconds

// A line with percentage, rate and remaining time, if standard error is a terminal.
class Progress {
 public:
  Progress(CameraLink& link, std::size_t size) : link_(link), size_(size) {
    if (::isatty(STDERR_FILENO) == 0) return;
    timer_ = link.platform().ports().threads.currentRunLoop().scheduleRepeating(kProgressInterval, [this] { show(); });
  }
  ~Progress() {
    if (timer_) say("");
  }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

 private:
  void show() {
    const auto waiting = std::min<std::uint64_t>(size_, link_.stack().statistics().bytesToWrite);
    const double done = static_cast<double>(size_ - waiting);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    const double rate = done / seconds;
    showProgress(fmt::format("{:3.0f} %  {:.1f} MB/s  {:.0f} s left", 100 * done / static_cast<double>(size_),
                             rate / 1e6, rate > 0 ? static_cast<double>(waiting) / rate : 0));
  }

  CameraLink& link_;
  const std::uint64_t size_;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::unique_ptr<platform::Timer> timer_;
};

// While the camera accepts bytes, the timeout for its reply does not begin.
Waited waitForAnswer(CameraLink& link, const Answer<>& answer, double seconds) {
  std::uint64_t before = 0;
  Waited end = Waited::timeOut;
  do {
    before = link.stack().statistics().bytesWritten;
    end = link.waitFor([&answer] { return answer.done; }, seconds);
  } while (end == Waited::timeOut && link.stack().statistics().bytesToWrite != 0 &&
           link.stack().statistics().bytesWritten != before);
  return end;
}

int upload(CameraLink& link, const Values& values, const ZELData& file, const Settings& settings) {
  const std::string path =
      values.has("--as") ? values.text("--as") : std::filesystem::path(values.text("FILE")).filename().string();
  const auto answer = std::make_shared<Answer<>>();
  const Progress progress(link, file.size());
  link.stack().ucd().sendFileWithType(values.integer("--type").value_or(0), path, file,
                                      keepIn(answer, link.platform()));
  link.sayAsked();
  const Waited end = waitForAnswer(link, *answer, settings.timeout);
  const int status = tellEnd("upload", end, answer->error, settings);
  if (status != kDone) return status;
  return tellDone(settings.json, {{"upload", values.text("FILE")}, {"path", path}, {"bytes", file.size()}},
                  fmt::format("uploaded {} bytes as {}", file.size(), path));
}

}  // namespace

int runUpload(const Invocation& invocation) {
  const Settings& settings = invocation.settings;
  std::string complaint;
  const auto file = readFile(invocation.values.text("FILE"), complaint, kLargestFile);
  if (!file) return complain(kWrongUsage, "upload", complaint);
  return withCamera(settings, [&](CameraLink& link) { return upload(link, invocation.values, *file, settings); });
}

}  // namespace zel::app

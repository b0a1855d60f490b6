#include "apps/zelcam/host/diagnostics.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <system_error>

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELDateFormatter.h>

#include "gateway/json/printable.h"

namespace zel::app {
namespace {

// Never destroyed: threads of the global queue may still log while the process ends.
ZELDateFormatter* writer = nullptr;
std::mutex writerMutex;  // keeps the lines of two threads apart

// The writer would replace a file that it cannot open, so a write-protected file or a folder is refused here.
bool isUsable(const std::string& path) {
  std::error_code ignored;
  return !std::filesystem::exists(path, ignored) ||
         (std::filesystem::is_regular_file(path, ignored) && std::ofstream(path, std::ios::app));
}

// An argument, quoted for a shell.
std::string quoted(const std::string& argument) {
  if (!argument.empty() && argument.find_first_of(" \t\n\"'\\$`*?&;|<>()") == std::string::npos) return argument;
  std::string text = "'";
  for (const char letter : argument) text += letter == '\'' ? "'\\''" : std::string(1, letter);
  return text + "'";
}

}  // namespace

bool keepLog(const std::string& path, std::string& error) {
  errno = 0;
  if (isUsable(path)) {
    auto candidate = std::make_unique<ZELDateFormatter>(LinuxPlatform::systemClock(), path);
    candidate->writeLogToFile(nullptr, 0);
    std::error_code ignored;
    if (std::filesystem::exists(path, ignored)) {
      writer = candidate.release();
      return true;
    }
  }
  error = fmt::format("the log cannot be kept in {}: {}", path, errno != 0 ? std::strerror(errno) : "it is no file");
  return false;
}

void note(std::string_view text) {
  if (writer == nullptr) return;
  const std::lock_guard lock(writerMutex);
  const std::string line =
      fmt::format("{} [{}] {}\n", writer->getCurrentTime(), ::getpid(), gateway::printable(std::string(text)));
  writer->writeLogToFile(line.data(), line.size());
}

void noteCommandLine(int argc, const char* const* argv) {
  std::string line = "zelcam";
  for (int i = 1; i < argc; ++i) line += " " + quoted(argv[i]);
  note(line);
}

void noteStatus(LinkStatus status) {
  note(fmt::format("status {} ({})", static_cast<std::uint64_t>(status), toString(status)));
}

}  // namespace zel::app

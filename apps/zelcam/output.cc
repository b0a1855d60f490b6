#include "apps/zelcam/output.h"

#include <chrono>
#include <cstdio>
#include <ctime>

#include <fmt/format.h>

#include "apps/zelcam/diagnostics.h"

namespace zel::app {
namespace {

// A reader that has gone, as `head` does, ends the output and not the program.
void write(std::FILE* file, const std::string& line) {
  std::fputs((line + '\n').c_str(), file);
  std::fflush(file);
}

}  // namespace

void printJson(const nlohmann::ordered_json& object) {
  write(stdout, object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

nlohmann::ordered_json errorJson(const std::optional<ZELError>& error) {
  if (!error) return nullptr;
  return {{"domain", error->domain}, {"code", error->code}};
}

std::string printable(std::string text) {
  for (char& letter : text) {
    if (static_cast<unsigned char>(letter) < 0x20 || letter == 0x7F) letter = '?';
  }
  return text;
}

void printLine(const std::string& line) { write(stdout, line); }

void say(const std::string& line) {
  write(stderr, line);
  note(line);
}

int complain(int status, std::string_view command, std::string_view complaint) {
  say(fmt::format("zelcam: {}: {}", command, complaint));
  return status;
}

void showProgress(const std::string& line) {
  std::fprintf(stderr, "\r%s\033[K", line.c_str());
  std::fflush(stderr);
}

std::string timeOfDay() {
  const auto now = std::chrono::system_clock::now();
  const auto milliseconds =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  std::tm local{};
  localtime_r(&seconds, &local);
  return fmt::format("{:02}:{:02}:{:02}.{:03}", local.tm_hour, local.tm_min, local.tm_sec, milliseconds);
}

}  // namespace zel::app

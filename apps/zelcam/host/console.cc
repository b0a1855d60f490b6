#include "apps/zelcam/host/console.h"

#include <cerrno>
#include <cstdio>
#include <utility>

#include <fmt/format.h>

#include "apps/zelcam/command_line/settings.h"
#include "apps/zelcam/host/diagnostics.h"
#include "apps/zelcam/host/interrupt.h"
#include "base/shared_value.h"

namespace zel::app {
namespace {

constexpr std::string_view kSpeaker = "zelcam: ";

struct Failure {
  std::string message;
  std::optional<ZELError> error;
};

// The state for the end of a run. Never destroyed: threads of the global queue may still print messages while the
// process ends.
struct Told {
  std::optional<Failure> failure;  // the first
  std::string line;                // the last that was said
  bool asJson = false;
  bool elsewhere = false;
  int outputFault = 0;
};

Guarded<Told>& told() {
  static auto* const all = new Guarded<Told>;
  return *all;
}

bool write(std::FILE* file, const std::string& text) {
  errno = 0;
  const bool isWritten = std::fputs(text.c_str(), file) >= 0;
  return std::fflush(file) == 0 && isWritten;
}

// Stops a command that would run forever without a reader.
void writeToStandardOutput(const std::string& text) {
  if (write(stdout, text) || errno == EPIPE) return;
  const int fault = errno != 0 ? errno : EIO;
  if (told().with([fault](Told& all) { return std::exchange(all.outputFault, fault); }) == 0) interrupt();
}

std::string wordsOfStatus(int status) {
  switch (status) {
    case kInterrupted:
      return "interrupted before it was done";
    case kNoCamera:
      return "no camera, no answer in time, or the camera was lost";
    case kWrongUsage:
      return "wrong usage";
    default:
      return "it failed";
  }
}

}  // namespace

void printJson(const nlohmann::ordered_json& object) { printLine(jsonLine(object)); }

int tellDone(bool asJson, const nlohmann::ordered_json& object, const std::string& line) {
  printLine(asJson ? jsonLine(object) : line);
  return kDone;
}

void leaveStandardOutput() { told().set(&Told::elsewhere, true); }

void printLine(const std::string& line) {
  if (told().get(&Told::elsewhere)) return say(line);
  writeToStandardOutput(printable(line) + '\n');
}

void printText(const std::string& text) { writeToStandardOutput(text); }

void say(const std::string& line) {
  if (line.starts_with(kSpeaker)) told().set(&Told::line, line.substr(kSpeaker.size()));
  write(stderr, printable(line) + '\n');
  note(line);
}

void rememberFailure(const std::string& message, const std::optional<ZELError>& error) {
  told().with([&](Told& all) {
    if (!all.failure) all.failure = Failure{message, error};
  });
}

void sayFailure(const std::string& message, const std::optional<ZELError>& error) {
  rememberFailure(message, error);
  say(std::string(kSpeaker) + message);
}

int complain(int status, std::string_view command, std::string_view complaint) {
  const std::string message = fmt::format("{}: {}", command, complaint);
  status == kDone ? say(std::string(kSpeaker) + message) : sayFailure(message);
  return status;
}

nlohmann::ordered_json failureJson(int status) {
  told().set(&Told::asJson, true);
  Failure failure = told().get(&Told::failure).value_or(Failure{});
  if (failure.message.empty() && status != kInterrupted) failure.message = told().get(&Told::line);
  if (failure.message.empty()) failure.message = wordsOfStatus(status);
  return {{"code", failure.error ? failure.error->code : status},
          {"domain", failure.error ? failure.error->domain : "zelcam"},
          {"message", failure.message}};
}

void printFailure(int status) {
  if (!told().get(&Told::asJson)) printJson({{"error", failureJson(status)}});
}

int standardOutputFault() { return told().get(&Told::outputFault); }

void showProgress(const std::string& line) {
  std::fprintf(stderr, "\r%s\033[K", printable(line).c_str());
  std::fflush(stderr);
}

}  // namespace zel::app

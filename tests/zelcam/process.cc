#include "tests/zelcam/process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <thread>
#include <utility>

namespace zel::test {
namespace {

constexpr std::chrono::seconds kPatience{60};

std::string readAll(const std::string& path) {
  std::stringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

bool waitUntil(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return true;
}

int openOutput(const std::string& path) { return ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600); }

}  // namespace

std::string zelcamProgram() { return ZELCAM_PROGRAM; }
std::string simulatorProgram() { return SIMULATOR_PROGRAM; }

Process::Process(const std::string& program, const std::vector<std::string>& arguments, const std::string& folder) {
  static std::atomic<int> count = 0;
  const std::string base = folder + "/process" + std::to_string(++count);
  outputFile_ = base + ".out";
  errorFile_ = base + ".err";
  int ends[2];
  if (::pipe(ends) != 0) return;
  std::vector<char*> argv{const_cast<char*>(program.c_str())};
  for (const auto& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  pid_ = ::fork();
  if (pid_ == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);  // a test that dies leaves nobody behind
    ::dup2(ends[0], STDIN_FILENO);
    ::dup2(openOutput(outputFile_), STDOUT_FILENO);
    ::dup2(openOutput(errorFile_), STDERR_FILENO);
    ::close(ends[1]);
    ::execv(program.c_str(), argv.data());
    ::_exit(127);
  }
  ::close(ends[0]);
  input_ = ends[1];
  ::fcntl(input_, F_SETFD, FD_CLOEXEC);
}

Process::~Process() {
  if (pid_ > 0) {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }
  endInput();
}

void Process::endInput() {
  if (input_ >= 0) ::close(std::exchange(input_, -1));
}

void Process::signal(int number) const { ::kill(pid_, number); }

void Process::tell(const std::string& line) const {
  const std::string text = line + "\n";
  if (::write(input_, text.data(), text.size()) < 0) std::abort();
}

int Process::wait() {
  int status = 0;
  rusage usage{};
  if (!waitUntil([&] { return ::wait4(pid_, &status, WNOHANG, &usage) == pid_; })) return -1;
  peakMemory_ = std::int64_t{usage.ru_maxrss} * 1024;
  pid_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

bool Process::waitForOutput(const std::string& text, const std::string& after) const {
  return waitUntil([&] {
    const std::string all = output();
    const std::size_t start = all.find(after);
    return start != std::string::npos && all.find(text, start) != std::string::npos;
  });
}

bool Process::waitForErrors(const std::string& text) const {
  return waitUntil([&] { return errors().find(text) != std::string::npos; });
}

bool Process::waitUntilHeard(int signal) const {
  const std::string field = "ShdPnd:";
  return waitUntil([&] {
    const std::string status = readAll("/proc/" + std::to_string(pid_) + "/status");
    const auto at = status.find(field);
    return at != std::string::npos &&
           (std::stoull(status.substr(at + field.size()), nullptr, 16) >> (signal - 1) & 1) == 0;
  });
}

std::string Process::output() const { return readAll(outputFile_); }
std::string Process::errors() const { return readAll(errorFile_); }

}  // namespace zel::test

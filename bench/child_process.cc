#include "bench/child_process.h"

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace zel::bench {
namespace {

double secondsOf(const rusage& usage) {
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double secondsUsedBy(int who) {
  rusage usage{};
  getrusage(who, &usage);
  return secondsOf(usage);
}

}  // namespace

ChildCost runChild(const std::vector<std::string>& command) {
  std::vector<std::string> words = command;
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const auto start = std::chrono::steady_clock::now();
  pid_t child = 0;
  int status = 0;
  rusage usage{};
  if (posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0 ||
      wait4(child, &status, 0, &usage) != child || status != 0) {
    std::fprintf(stderr, "%s did not run to its end\n", arguments[0]);
    std::exit(1);
  }
  return {std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), secondsOf(usage)};
}

double processorSeconds() { return secondsUsedBy(RUSAGE_SELF); }
double threadProcessorSeconds() { return secondsUsedBy(RUSAGE_THREAD); }

}  // namespace zel::bench

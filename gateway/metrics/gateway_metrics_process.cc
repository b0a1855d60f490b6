#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "gateway/metrics/gateway_metrics.h"

namespace zel::gateway {
namespace {

double secondsOf(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

std::uint64_t residentMemory() {
  std::uint64_t pages = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

// The kernel tells it in ticks since it began itself. The program's name, in parentheses, may hold spaces.
double startOfProcess() {
  constexpr int kFieldsBefore = 19;  // between the name and the start
  std::ifstream file("/proc/self/stat");
  const std::string line((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  std::istringstream fields(line.substr(line.rfind(')') + 1));
  std::string field;
  for (int i = 0; i < kFieldsBefore; ++i) fields >> field;
  double ticks = 0, boot = 0;
  fields >> ticks;
  std::ifstream kernel("/proc/stat");
  for (std::string name; kernel >> name;) {
    if (name == "btime") kernel >> boot;
  }
  return boot + ticks / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

std::uint64_t openDescriptors() {
  std::error_code fault;
  std::uint64_t count = 0;
  for (auto at = std::filesystem::directory_iterator("/proc/self/fd", fault);
       !fault && at != std::filesystem::directory_iterator(); at.increment(fault))
    ++count;
  return count;
}

}  // namespace

ProcessMetrics processMetrics() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return {secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime), startOfProcess(), residentMemory(), openDescriptors()};
}

}  // namespace zel::gateway

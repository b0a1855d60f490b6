#include "apps/zelcam/host/child.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include "apps/zelcam/host/interrupt.h"

namespace zel::app {
namespace {

constexpr int kNotRun = 127;

// Runs in the child process, where only system calls are allowed.
[[noreturn]] void become(const char* program, char* const* arguments, int output) {
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
  ::dup2(output, STDOUT_FILENO);
  ::dup2(output, STDERR_FILENO);
  ::execv(program, arguments);
  ::_exit(kNotRun);
}

int stopDescriptor() {
  const sigset_t signals = stopSignals();
  return ::signalfd(-1, &signals, SFD_CLOEXEC);
}

}  // namespace

Child::Child(const std::string& program, const std::vector<std::string>& arguments) {
  std::vector<char*> argv{const_cast<char*>(program.c_str())};
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) return;
  signals_ = stopDescriptor();
  output_ = ends[0];
  pid_ = ::fork();
  if (pid_ == 0) become(program.c_str(), argv.data(), ends[1]);
  ::close(ends[1]);
}

Child::~Child() {
  if (pid_ > 0) ::kill(pid_, SIGTERM);
  wait();
  ::close(output_);
  ::close(signals_);
}

bool Child::read(const std::function<bool(const std::string& piece)>& enough) {
  std::array<pollfd, 2> sources{{{output_, POLLIN, 0}, {signals_, POLLIN, 0}}};
  std::array<char, 4096> bytes;
  while (::poll(sources.data(), sources.size(), -1) > 0 || errno == EINTR) {
    if (sources[1].revents != 0 && pid_ > 0) {
      ::kill(pid_, SIGTERM);
      sources[1].fd = -1;  // it stays pending, for whoever asks next
    }
    if (sources[0].revents == 0) continue;
    const ssize_t size = ::read(output_, bytes.data(), bytes.size());
    if (size <= 0) return false;
    if (enough(std::string(bytes.data(), static_cast<std::size_t>(size)))) return true;
  }
  return false;
}

int Child::wait() {
  const pid_t pid = std::exchange(pid_, -1);
  int status = 0;
  if (pid <= 0 || ::waitpid(pid, &status, 0) != pid) return kNotRun;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace zel::app

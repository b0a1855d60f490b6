#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace zel::app {

// A child process that does not outlive this program. Its standard output and error share one pipe; its standard input
// is empty.
// Thread: one at a time; create it before this program starts threads.
class Child {
 public:
  // Errors: a program that cannot be run gives status 127.
  Child(const std::string& program, const std::vector<std::string>& arguments);
  // Ends it by SIGTERM, if it still runs, and waits for it.
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // Passes its output to `enough` until that returns true, or until the output is closed. Termination signals, which
  // the caller has blocked, are forwarded as SIGTERM. False when the output was closed.
  bool read(const std::function<bool(const std::string& piece)>& enough);

  // Waits for its end. Returns its exit status; 128 plus the number of the signal that ended it; 127 if it could not be
  // run.
  int wait();

 private:
  pid_t pid_ = -1;
  int output_ = -1;
  int signals_ = -1;
};

}  // namespace zel::app

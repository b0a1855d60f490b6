#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace zel::app {

// Another program that this one runs, and that does not outlive it. What it writes on standard output and error comes
// through one pipe; its standard input is empty.
// Thread: one at a time; to be made before this program has threads of its own.
class Child {
 public:
  // Errors: a program that cannot be run ends at once with status 127.
  Child(const std::string& program, const std::vector<std::string>& arguments);
  // Ends it by SIGTERM, where it still runs, and waits for it.
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // Hands on what it writes until `enough` says so of a piece, or it has closed its output. The signals that end
  // a program, which the caller has blocked, are handed on to it by SIGTERM. False where it has closed its output.
  bool read(const std::function<bool(const std::string& piece)>& enough);

  // Waits for its end. Its exit status; 128 and the number of the signal that ended it; 127 where it was never there.
  int wait();

 private:
  pid_t pid_ = -1;
  int output_ = -1;
  int signals_ = -1;
};

}  // namespace zel::app

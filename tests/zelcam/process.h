#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/platform/linux/temporary_folder.h"

namespace zel::test {

// The programs that were built with the tests.
std::string zelcamProgram();
std::string simulatorProgram();

// A program under test, with its standard output and error kept in files.
class Process {
 public:
  Process(const std::string& program, const std::vector<std::string>& arguments, const std::string& folder);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  pid_t id() const { return pid_; }
  void signal(int number) const;
  // Writes a line to its standard input.
  void tell(const std::string& line) const;
  // Ends its standard input.
  void endInput();
  // Its exit status, 128 and the signal's number where one ended it; -1 when it runs for longer than a minute.
  int wait();
  // The most memory that it had at a time, in bytes; once wait() has returned its status.
  std::int64_t peakMemory() const { return peakMemory_; }
  // Waits until its output holds the text, behind the first that is `after`; false after a minute.
  bool waitForOutput(const std::string& text, const std::string& after = {}) const;
  bool waitForErrors(const std::string& text) const;
  // Waits until a signal that it blocks has been taken by whoever waits for it there; false after a minute.
  bool waitUntilHeard(int signal) const;

  std::string output() const;
  std::string errors() const;

 private:
  pid_t pid_ = -1;
  std::int64_t peakMemory_ = 0;
  int input_ = -1;
  std::string outputFile_;
  std::string errorFile_;
};

}  // namespace zel::test

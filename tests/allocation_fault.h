#pragma once

#include "tests/sanitizers.h"

namespace zel::test {

// Whether malloc() and its kin fail too, which is what codecs take memory by. Under a sanitizer, which has replaced
// them, only operator new does.
#ifdef ZEL_SANITIZED
inline constexpr bool kMallocFails = false;
#else
inline constexpr bool kMallocFails = true;
#endif

// Lets one allocation of this program fail: the one of that number, counted from 1 among those made in a FaultyCode
// scope from now on. It works in programs that are linked with allocation_fault.cc. One at a time.
class AllocationFault {
 public:
  explicit AllocationFault(long number);
  ~AllocationFault();
  AllocationFault(const AllocationFault&) = delete;
  AllocationFault& operator=(const AllocationFault&) = delete;

  bool hasStruck() const;
  // Allocations that were counted.
  static long counted();
};

// The calling thread runs code whose allocations count, or whose do not, until the scope ends. Scopes nest.
class FaultyCode {
 public:
  explicit FaultyCode(bool counts = true);
  ~FaultyCode();
  FaultyCode(const FaultyCode&) = delete;
  FaultyCode& operator=(const FaultyCode&) = delete;

 private:
  const int outer_;
};

// The same for threads that the code itself starts: whether theirs count where no scope says so.
void countOnOtherThreads(bool counts);

// Bytes that the program holds; see live_bytes.h.
long heldBytes();

}  // namespace zel::test

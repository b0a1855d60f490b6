#pragma once

#include <new>
#include <utility>

namespace zel {

// Makes a call, and tells whether there was memory for it; where there was not, the call has ended where it was. What
// the platform or the camera calls goes through this wherever nobody above could catch anything.
// Errors: any other exception is the callee's own, and passes through.
template <class Call>
[[nodiscard]] bool hasMemoryFor(Call&& call) {
  try {
    std::forward<Call>(call)();
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

// The same where nothing can be done about it.
template <class Call>
void ifMemoryAllows(Call&& call) {
  static_cast<void>(hasMemoryFor(std::forward<Call>(call)));
}

}  // namespace zel

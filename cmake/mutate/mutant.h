// Which of the mutants that were compiled in is in force: the number in $ZEL_MUTANT, none where that is not set.
// $ZEL_MUTANTS_REACHED names a file with a byte for each number; a mutant's place that is reached sets its own to 1.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cstddef>
#include <cstdlib>
#include <type_traits>

namespace mutate {

struct Choice {
  Choice() {
    if (const char* number = std::getenv("ZEL_MUTANT")) inForce = std::atoi(number);
    const char* path = std::getenv("ZEL_MUTANTS_REACHED");
    const int file = path != nullptr ? ::open(path, O_RDWR | O_CLOEXEC) : -1;
    struct stat facts = {};
    if (file < 0 || ::fstat(file, &facts) != 0) return;
    void* bytes = ::mmap(nullptr, static_cast<std::size_t>(facts.st_size), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (bytes != MAP_FAILED) reached = static_cast<unsigned char*>(bytes);
  }

  int inForce = 0;
  unsigned char* reached = nullptr;
};

inline bool isInForce(int number) {
  static const Choice choice;
  if (choice.reached != nullptr) __atomic_store_n(choice.reached + number, 1, __ATOMIC_RELAXED);
  return choice.inForce == number;
}

// Never while compiling, so that functions which are also used there can be changed.
constexpr bool on(int number) {
  if (std::is_constant_evaluated()) return false;
  return isInForce(number);
}

}  // namespace mutate

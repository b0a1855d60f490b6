#include "tests/allocation_count.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/sanitizers.h"

namespace {

std::atomic<long> allocations = 0;

}  // namespace

long zel::test::allocationCount() { return allocations; }

#ifdef ZEL_SANITIZED

#include <sanitizer/allocator_interface.h>

namespace {

// A sanitizer has replaced the allocator already, and lets others look on.
void count(const volatile void*, std::size_t) { ++allocations; }
void ignore(const volatile void*) {}
[[maybe_unused]] const int kInstalled = __sanitizer_install_malloc_and_free_hooks(count, ignore);

}  // namespace

#else

// Not inlined: GCC would see free() called on what "new" gave, and take the pair for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size != 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

#endif

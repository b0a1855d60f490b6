#include "tests/live_bytes.h"

#include "tests/sanitizers.h"

#ifdef ZEL_SANITIZED

#include <sanitizer/allocator_interface.h>

// A sanitizer has replaced the allocator already, and counts.
long zel::test::liveBytes() { return static_cast<long>(__sanitizer_get_current_allocated_bytes()); }

#else

#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstddef>

// The C library's allocator under the names that it keeps for those who replace malloc() and its kin.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
}

namespace {

std::atomic<long> held = 0;

long sizeOf(void* memory) { return static_cast<long>(malloc_usable_size(memory)); }

void* taken(void* memory) {
  held.fetch_add(sizeOf(memory), std::memory_order_relaxed);
  return memory;
}

}  // namespace

long zel::test::liveBytes() { return held.load(std::memory_order_relaxed); }

// Seen by the libraries, too.
#pragma GCC visibility push(default)
extern "C" {

void* malloc(std::size_t size) noexcept { return taken(__libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) noexcept { return taken(__libc_calloc(count, size)); }
void* memalign(std::size_t alignment, std::size_t size) noexcept { return taken(__libc_memalign(alignment, size)); }
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept { return memalign(alignment, size); }

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept {
  void* const block = memalign(alignment, size);
  if (block == nullptr) return ENOMEM;
  *memory = block;
  return 0;
}

void* realloc(void* memory, std::size_t size) noexcept {
  const long before = sizeOf(memory);
  void* const moved = __libc_realloc(memory, size);
  if (moved != nullptr || size == 0) held.fetch_sub(before, std::memory_order_relaxed);
  return taken(moved);
}

void free(void* memory) noexcept {
  held.fetch_sub(sizeOf(memory), std::memory_order_relaxed);
  __libc_free(memory);
}

}  // extern "C"
#pragma GCC visibility pop

#endif

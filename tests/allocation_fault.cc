#include "tests/allocation_fault.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

std::atomic<long> left = 0;  // until the one that fails; 0 or below: none does
std::atomic<long> made = 0;
std::atomic<bool> othersCount = false;

enum Counting { kAsOthers, kYes, kNo };
thread_local int counting = kAsOthers;

bool counts() { return counting == kAsOthers ? othersCount.load() : counting == kYes; }

// Whether this allocation is the one.
bool strikes() {
  if (!counts()) return false;
  made.fetch_add(1);
  return left.load() > 0 && left.fetch_sub(1) == 1;
}

}  // namespace

namespace zel::test {

AllocationFault::AllocationFault(long number) {
  made = 0;
  left = number;
}
AllocationFault::~AllocationFault() { left = 0; }
bool AllocationFault::hasStruck() const { return left.load() <= 0; }
long AllocationFault::counted() { return made; }

FaultyCode::FaultyCode(bool counted) : outer_(std::exchange(counting, counted ? kYes : kNo)) {}
FaultyCode::~FaultyCode() { counting = outer_; }

void countOnOtherThreads(bool counted) { othersCount = counted; }

}  // namespace zel::test

#ifdef ZEL_SANITIZED

#include <sanitizer/allocator_interface.h>

long zel::test::heldBytes() { return static_cast<long>(__sanitizer_get_current_allocated_bytes()); }

[[gnu::noinline]] void* operator new(std::size_t size) {
  if (strikes()) throw std::bad_alloc();
  if (void* memory = std::malloc(size != 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
// A sanitizer has its own, and what that gives must not come to free().
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return strikes() ? nullptr : std::malloc(size != 0 ? size : 1);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }

#else

#include <malloc.h>

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

void* refused() {
  errno = ENOMEM;
  return nullptr;
}

}  // namespace

long zel::test::heldBytes() { return held.load(std::memory_order_relaxed); }

// Seen by the libraries, too.
#pragma GCC visibility push(default)
extern "C" {

void* malloc(std::size_t size) noexcept { return strikes() ? refused() : taken(__libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) noexcept {
  return strikes() ? refused() : taken(__libc_calloc(count, size));
}
void* memalign(std::size_t alignment, std::size_t size) noexcept {
  return strikes() ? refused() : taken(__libc_memalign(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept { return memalign(alignment, size); }

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept {
  void* const block = memalign(alignment, size);
  if (block == nullptr) return ENOMEM;
  *memory = block;
  return 0;
}

void* realloc(void* memory, std::size_t size) noexcept {
  if (strikes()) return refused();
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

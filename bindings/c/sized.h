#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "bindings/c/failure.h"

// Structs whose size the caller tells, so that programs and libraries of different versions understand each other.

namespace zel::c {

// The size that a struct had in the first version that had it; to be told here for each one that has grown since.
template <class T>
inline constexpr std::size_t kFirstSize = sizeof(T);

// More is a size that was never set.
inline constexpr std::size_t kLargestSize = 4096;

template <class T>
constexpr bool isSizeOf(std::size_t size) {
  return size >= kFirstSize<T> && size <= kLargestSize;
}

template <class T>
void checkSized(const T* given, std::string_view name) {
  if (given == nullptr) refuse(std::string(name) + " is NULL");
  if (isSizeOf<T>(given->size)) return;
  refuse(std::string(name) + "->size is " + std::to_string(given->size) + "; set it to " + std::to_string(sizeof(T)) +
         ", its sizeof");
}

// What is given in, without what this version does not know: that must be zero.
template <class T>
T taken(const T* given, std::string_view name) {
  checkSized(given, name);
  T copy{};
  std::memcpy(&copy, given, std::min(given->size, sizeof(T)));
  const auto* const bytes = reinterpret_cast<const unsigned char*>(given);
  if (given->size > sizeof(T) &&
      std::any_of(bytes + sizeof(T), bytes + given->size, [](auto byte) { return byte != 0; }))
    refuse(std::string(name) + " holds what a later version of the library knows");
  return copy;
}

// The same where NULL stands for zeros.
template <class T>
T takenOrZero(const T* given, std::string_view name) {
  return given == nullptr ? T{} : taken(given, name);
}

// Fills what is given for a value; what this version does not know becomes zero. The size stays.
template <class T>
void give(T* given, T value) noexcept {
  value.size = given->size;
  std::memset(static_cast<void*>(given), 0, value.size);
  std::memcpy(static_cast<void*>(given), &value, std::min(value.size, sizeof(T)));
}

}  // namespace zel::c

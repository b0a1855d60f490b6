#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace zel::platform {
struct Ports;
}

namespace zel::test {

// One operation of the public interface: how it is spelt in C++, its labelled form, and how many labels its parameters
// fill.
struct Operation {
  std::string_view owner;
  std::string_view name;
  std::string_view labels;
  std::size_t labelsFilled;
  bool (*isThere)();
};

// Needs the symbol of the operation, and not only its type.
template <auto kOperation>
bool isThere() {
  const volatile auto operation = kOperation;
  return operation != nullptr;
}

// A view of bytes stands for two labels, the bytes and their number; the host's ports have none.
template <class T>
inline constexpr std::size_t kLabelsOf = 1;
template <>
inline constexpr std::size_t kLabelsOf<std::span<const std::uint8_t>> = 2;
template <>
inline constexpr std::size_t kLabelsOf<const platform::Ports&> = 0;

template <class Result, class... Arguments>
consteval std::size_t labelsFilledBy(Result (*)(Arguments...)) {
  return (0 + ... + kLabelsOf<Arguments>);
}
template <class Owner, class Result, class... Arguments>
consteval std::size_t labelsFilledBy(Result (Owner::*)(Arguments...)) {
  return (0 + ... + kLabelsOf<Arguments>);
}
template <class Owner, class Result, class... Arguments>
consteval std::size_t labelsFilledBy(Result (Owner::*)(Arguments...) const) {
  return (0 + ... + kLabelsOf<Arguments>);
}

// The one of several functions of a name that makes an object of these arguments.
template <class Result, class... Arguments>
using Create = Result (*)(Arguments...);

// Macros, since only these know a name and its spelling both.
#define ZEL_OPERATION(owner, name, labels)                                                              \
  zel::test::Operation {                                                                                \
#owner, #name, labels, zel::test::labelsFilledBy(&owner::name), &zel::test::isThere < &owner::name> \
  }
#define ZEL_OVERLOADED(owner, name, labels, ...)                                               \
  zel::test::Operation {                                                                       \
#owner, #name, labels, zel::test::labelsFilledBy(static_cast <__VA_ARGS__>(&owner::name)), \
        &zel::test::isThere < static_cast < __VA_ARGS__>(&owner::name)>                        \
  }
#define ZEL_FUNCTION(name, labels) \
  zel::test::Operation { "", #name, labels, zel::test::labelsFilledBy(&name), &zel::test::isThere<&name> }

}  // namespace zel::test

#pragma once

#include <ZELTarkaSDK/zel.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

#include "bindings/python/native/python.h"

// Numbers, texts and bytes from Python and to it. What is wrong raises an exception with words.

namespace zel::python {

// -- To Python

inline PyObject* toPython(double value) { return PyFloat_FromDouble(value); }
inline PyObject* toPython(float value) { return PyFloat_FromDouble(static_cast<double>(value)); }
template <class Number>
requires std::is_integral_v<Number> PyObject* toPython(Number value) {
  if constexpr (std::is_signed_v<Number>)
    return PyLong_FromLongLong(value);
  else
    return PyLong_FromUnsignedLongLong(value);
}
// None for NULL. What is not UTF-8 is replaced.
PyObject* toPython(const char* text);
inline PyObject* toPython(char* text) { return toPython(static_cast<const char*>(text)); }
PyObject* bytesToPython(const std::uint8_t* bytes, std::size_t length);

template <std::size_t size>
PyObject* toPython(const std::uint8_t (&bytes)[size]) {
  return bytesToPython(bytes, size);
}
template <class Item, std::size_t size>
PyObject* toPython(const Item (&items)[size]) {
  Reference tuple(PyTuple_New(size));
  for (std::size_t at = 0; tuple && at < size; ++at) {
    PyObject* const item = toPython(items[at]);
    if (item == nullptr) return nullptr;
    PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(at), item);
  }
  return tuple.release();
}

// A tuple of what is given; null where one of them is.
template <class... Items>
PyObject* tupleOf(Items... items) {
  std::array<Reference, sizeof...(Items)> owned{Reference(items)...};
  Reference tuple(PyTuple_New(sizeof...(Items)));
  for (std::size_t at = 0; tuple && at < owned.size(); ++at) {
    if (!owned[at]) return nullptr;
    PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(at), owned[at].release());
  }
  return tuple.release();
}

// -- From Python. False with an exception. name: for people.

bool wholeNumber(PyObject* from, const std::string& name, std::int64_t least, std::int64_t most, std::int64_t* to);
bool fromPython(PyObject* from, const std::string& name, double* to);
bool fromPython(PyObject* from, const std::string& name, float* to);
template <class Number>
requires std::is_integral_v<Number>
bool fromPython(PyObject* from, const std::string& name, Number* to) {
  using Limits = std::numeric_limits<Number>;
  static_assert(sizeof(Number) < 8 || std::is_signed_v<Number>, "its largest is beyond what is compared");
  std::int64_t value = 0;
  if (!wholeNumber(from, name, Limits::min(), Limits::max(), &value)) return false;
  *to = static_cast<Number>(value);
  return true;
}
bool bytesFromPython(PyObject* from, const std::string& name, std::uint8_t* to, std::size_t size);

template <std::size_t size>
bool fromPython(PyObject* from, const std::string& name, std::uint8_t (*to)[size]) {
  return bytesFromPython(from, name, *to, size);
}

// The items of a sequence that must have so many; null with an exception.
Reference itemsOf(PyObject* from, const std::string& name, const char* form, Py_ssize_t count);

template <class Item, std::size_t size>
bool fromPython(PyObject* from, const std::string& name, Item (*to)[size]) {
  const Reference items = itemsOf(from, name, "numbers", size);
  for (std::size_t at = 0; items && at < size; ++at) {
    if (!fromPython(PySequence_Fast_GET_ITEM(items.get(), static_cast<Py_ssize_t>(at)),
                    name + "[" + std::to_string(at) + "]", &(*to)[at]))
      return false;
  }
  return static_cast<bool>(items);
}

}  // namespace zel::python

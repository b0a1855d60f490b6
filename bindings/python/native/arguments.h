#pragma once

#include <climits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bindings/python/native/objects.h"
#include "bindings/python/native/results.h"
#include "bindings/python/native/values.h"

namespace zel::python {

// The arguments of a call, one after the other. The first that is wrong sets an exception; what follows reads as zero,
// and nothing is begun.
class Arguments {
 public:
  // The names of those that must be given stand in the messages; count: how many.
  Arguments(PyObject* const* given, Py_ssize_t has, Py_ssize_t count);
  ~Arguments();
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;

  bool isWrong() const { return isWrong_; }

  std::shared_ptr<Owned> handle(Kind kind, const char* name);
  template <class Number>
  Number number(const char* name) {
    return value<Number>(name);
  }
  template <class Record>
  Record record(const char* name) {
    return value<Record>(name);
  }
  // The same; all zero where it is None. isGiven: whether it was not.
  template <class Record>
  Record recordOrNone(const char* name, bool* isGiven) {
    *isGiven = !isNone();
    if (*isGiven) return value<Record>(name);
    next();
    return {};
  }
  const char* text(const char* name);
  const char* textOrNone(const char* name);
  struct Bytes {
    const std::uint8_t* data;
    std::size_t length;
  };
  Bytes bytes(const char* name);
  Bytes bytesOrNone(const char* name);
  std::vector<std::int8_t> steps(const char* name);
  std::vector<const char*> texts(const char* name);
  std::shared_ptr<Wakeup> wakeup();
  zel_picture* picture();

  // Begins a call whose result is an Out. begin: makes the library's call with the operation and its `out`; the
  // interpreter's lock is released meanwhile. The new Call, or null with an exception.
  template <class Out, class Begin>
  PyObject* begin(std::shared_ptr<Wakeup> wakeup, const Begin& begin) {
    if (isWrong_) return nullptr;
    const auto operation = std::make_shared<OperationWith<Out>>(std::move(wakeup));
    zel_error error{};
    error.size = sizeof error;
    zel_status status = ZEL_OK;
    {
      const WithoutLock unlocked;
      status = begin(*operation, &operation->out, &error);
    }
    if (status == ZEL_OK) return newCall(operation);
    operation->giveUp();
    raise(error);
    return nullptr;
  }

 private:
  template <class Value>
  Value value(const char* name) {
    Value read{};
    PyObject* const from = next();
    if (!isWrong_ && !fromPython(from, name, &read)) isWrong_ = true;
    return read;
  }
  PyObject* next() { return isWrong_ ? Py_None : given_[at_++]; }
  bool isNone() const { return isWrong_ || given_[at_] == Py_None; }
  const char* textOf(PyObject* from, const char* name);

  PyObject* const* const given_;
  Py_ssize_t at_ = 0;
  bool isWrong_ = false;
  std::vector<Py_buffer> buffers_;
  std::vector<Reference> kept_;
};

}  // namespace zel::python

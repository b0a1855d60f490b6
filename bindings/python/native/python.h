#pragma once

// The interpreter's interface, which wants to be included first.
#define PY_SSIZE_T_CLEAN
#include <Python.h>
#include <unistd.h>

#include <utility>

namespace zel::python {

// Releases the interpreter's lock as long as it lives.
//
// Thread: one that comes back when the interpreter has begun to end stays here, as the process ends: the interpreter
//         would end it by unwinding, which would run destructors without the lock.
class WithoutLock {
 public:
  WithoutLock() : state_(PyEval_SaveThread()) {}
  ~WithoutLock() noexcept(false) {
    while (_Py_IsFinalizing() != 0 && !isMain_) pause();
    PyEval_RestoreThread(state_);
  }
  WithoutLock(const WithoutLock&) = delete;
  WithoutLock& operator=(const WithoutLock&) = delete;

 private:
  const bool isMain_ = gettid() == getpid();
  PyThreadState* const state_;
};

// A reference that is owned.
class Reference {
 public:
  explicit Reference(PyObject* object = nullptr) : object_(object) {}
  ~Reference() { Py_XDECREF(object_); }
  Reference(Reference&& other) noexcept : object_(other.release()) {}
  Reference& operator=(Reference&& other) noexcept {
    if (this != &other) {
      Py_XDECREF(object_);
      object_ = other.release();
    }
    return *this;
  }
  Reference(const Reference&) = delete;
  Reference& operator=(const Reference&) = delete;

  explicit operator bool() const { return object_ != nullptr; }
  PyObject* get() const { return object_; }
  PyObject* release() { return std::exchange(object_, nullptr); }

 private:
  PyObject* object_;
};

}  // namespace zel::python

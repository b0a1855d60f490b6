#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <new>

#include "bindings/python/native/arguments.h"
#include "bindings/python/native/python.h"

// The functions of this module, in lists that end with nullptr.

namespace zel::python {

using Function = PyObject* (*)(PyObject* module, PyObject* const* arguments, Py_ssize_t count);

// The function, whose C++ exceptions become Python's.
template <Function function>
PyObject* guarded(PyObject* module, PyObject* const* arguments, Py_ssize_t count) {
  try {
    return function(module, arguments, count);
  } catch (const std::bad_alloc&) {
    return PyErr_NoMemory();
  } catch (const std::exception& fault) {
    PyErr_SetString(PyExc_RuntimeError, fault.what());
    return nullptr;
  }
}

template <Function function>
PyMethodDef method(const char* name) {
  // The interpreter keeps functions of every form behind this type, and calls them by the flag.
  return {name, reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(guarded<function>)), METH_FASTCALL, nullptr};
}

inline zel_camera* cameraOf(const Owned& owned) { return static_cast<zel_camera*>(owned.handle()); }
inline zel_stream* streamOf(const Owned& owned) { return static_cast<zel_stream*>(owned.handle()); }
inline zel_subscription* subscriptionOf(const Owned& owned) { return static_cast<zel_subscription*>(owned.handle()); }
inline zel_stitcher* stitcherOf(const Owned& owned) { return static_cast<zel_stitcher*>(owned.handle()); }

// Makes a call that does not wait for the camera; the interpreter's lock is released meanwhile. False with an
// exception.
bool called(const std::function<zel_status(zel_error*)>& call);

PyObject* newSubscription(const std::function<zel_status(zel_subscription**, zel_error*)>& subscribe);

// Arguments of several functions.
zel_queue_options queueFrom(Arguments& given);
zel_format formatFrom(Arguments& given);

// A logo, its size and its angle.
struct LogoPixels {
  explicit LogoPixels(Arguments& given);
  // False with an exception.
  bool isWhole() const;
  // Into the options of whatever stitches.
  template <class Options>
  void putInto(Options& options) const {
    options.logo = pixels.data;
    options.logo_width = width;
    options.logo_height = height;
    options.logo_angle = angle;
  }

  const Arguments::Bytes pixels;
  const std::int32_t width, height;
  const double angle;
};

PyMethodDef* requestMethods();
PyMethodDef* cameraMethods();
PyMethodDef* mediaMethods();
PyMethodDef* streamMethods();

}  // namespace zel::python

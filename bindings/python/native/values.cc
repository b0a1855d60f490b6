#include "bindings/python/native/values.h"

#include <cmath>
#include <cstring>

namespace zel::python {
namespace {

const char* typeName(PyObject* object) { return Py_TYPE(object)->tp_name; }

// Finite, or it would reach the camera as nothing that can be read.
bool realNumber(PyObject* from, const std::string& name, double* to) {
  if (PyBool_Check(from) || !PyNumber_Check(from)) {
    PyErr_Format(PyExc_TypeError, "%s must be a number, not %s", name.c_str(), typeName(from));
    return false;
  }
  const double value = PyFloat_AsDouble(from);
  if (value == -1.0 && PyErr_Occurred()) return false;
  if (!std::isfinite(value)) {
    PyErr_Format(PyExc_ValueError, "%s must be a finite number", name.c_str());
    return false;
  }
  *to = value;
  return true;
}

}  // namespace

PyObject* toPython(const char* text) {
  if (text == nullptr) Py_RETURN_NONE;
  return PyUnicode_DecodeUTF8(text, static_cast<Py_ssize_t>(std::strlen(text)), "replace");
}

PyObject* bytesToPython(const std::uint8_t* bytes, std::size_t length) {
  return PyBytes_FromStringAndSize(reinterpret_cast<const char*>(bytes), static_cast<Py_ssize_t>(length));
}

bool wholeNumber(PyObject* from, const std::string& name, std::int64_t least, std::int64_t most, std::int64_t* to) {
  const Reference number(PyBool_Check(from) ? nullptr : PyNumber_Index(from));
  if (!number) {
    PyErr_Clear();
    PyErr_Format(PyExc_TypeError, "%s must be a whole number, not %s", name.c_str(), typeName(from));
    return false;
  }
  int overflow = 0;
  const long long value = PyLong_AsLongLongAndOverflow(number.get(), &overflow);
  if (overflow != 0 || value < least || value > most) {
    PyErr_Format(PyExc_ValueError, "%s must be from %lld to %lld, and is %S", name.c_str(),
                 static_cast<long long>(least), static_cast<long long>(most), number.get());
    return false;
  }
  *to = value;
  return true;
}

bool fromPython(PyObject* from, const std::string& name, double* to) { return realNumber(from, name, to); }

bool fromPython(PyObject* from, const std::string& name, float* to) {
  double value = 0;
  if (!realNumber(from, name, &value)) return false;
  *to = static_cast<float>(value);
  return true;
}

bool bytesFromPython(PyObject* from, const std::string& name, std::uint8_t* to, std::size_t size) {
  Py_buffer buffer;
  if (PyObject_CheckBuffer(from) == 0 || PyObject_GetBuffer(from, &buffer, PyBUF_SIMPLE) != 0) {
    PyErr_Clear();
    PyErr_Format(PyExc_TypeError, "%s must be bytes, not %s", name.c_str(), typeName(from));
    return false;
  }
  const bool fits = buffer.len == static_cast<Py_ssize_t>(size);
  if (fits) std::memcpy(to, buffer.buf, size);
  if (!fits) PyErr_Format(PyExc_ValueError, "%s must have %zu bytes, and has %zd", name.c_str(), size, buffer.len);
  PyBuffer_Release(&buffer);
  return fits;
}

Reference itemsOf(PyObject* from, const std::string& name, const char* form, Py_ssize_t count) {
  const bool isText = PyUnicode_Check(from) || PyBytes_Check(from);
  Reference items(isText ? nullptr : PySequence_Fast(from, ""));
  if (!items) {
    PyErr_Clear();
    PyErr_Format(PyExc_TypeError, "%s must be %s, not %s", name.c_str(), form, typeName(from));
    return items;
  }
  if (PySequence_Fast_GET_SIZE(items.get()) == count) return items;
  PyErr_Format(PyExc_ValueError, "%s must be %s, %zd of them, and has %zd", name.c_str(), form, count,
               PySequence_Fast_GET_SIZE(items.get()));
  return Reference();
}

}  // namespace zel::python

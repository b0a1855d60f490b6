#include "bindings/python/native/arguments.h"

#include <cstring>

namespace zel::python {

Arguments::Arguments(PyObject* const* given, Py_ssize_t has, Py_ssize_t count) : given_(given) {
  if (has == count) return;
  PyErr_Format(PyExc_TypeError, "%zd arguments are needed, and %zd were given", count, has);
  isWrong_ = true;
}

Arguments::~Arguments() {
  for (Py_buffer& one : buffers_) PyBuffer_Release(&one);
}

std::shared_ptr<Owned> Arguments::handle(Kind kind, const char* name) {
  PyObject* const from = next();
  if (isWrong_) return nullptr;
  auto owned = ownedOf(from, kind, name);
  isWrong_ = !owned;
  return owned;
}

const char* Arguments::textOf(PyObject* from, const char* name) {
  if (isWrong_) return "";
  Py_ssize_t length = 0;
  const char* const text = PyUnicode_Check(from) ? PyUnicode_AsUTF8AndSize(from, &length) : nullptr;
  if (text != nullptr && std::strlen(text) == static_cast<std::size_t>(length)) return text;
  isWrong_ = true;
  if (text != nullptr)
    PyErr_Format(PyExc_ValueError, "%s must not hold a zero character", name);
  else if (PyErr_Occurred() == nullptr)
    PyErr_Format(PyExc_TypeError, "%s must be a str, not %s", name, Py_TYPE(from)->tp_name);
  return "";
}

const char* Arguments::text(const char* name) { return textOf(next(), name); }

const char* Arguments::textOrNone(const char* name) {
  if (!isNone()) return text(name);
  next();
  return nullptr;
}

Arguments::Bytes Arguments::bytes(const char* name) {
  PyObject* const from = next();
  if (isWrong_) return {nullptr, 0};
  Py_buffer buffer;
  if (PyObject_CheckBuffer(from) == 0 || PyObject_GetBuffer(from, &buffer, PyBUF_SIMPLE) != 0) {
    PyErr_Clear();
    PyErr_Format(PyExc_TypeError, "%s must be bytes, or show its own in one piece, not %s", name,
                 Py_TYPE(from)->tp_name);
    isWrong_ = true;
    return {nullptr, 0};
  }
  buffers_.push_back(buffer);
  return {static_cast<const std::uint8_t*>(buffer.buf), static_cast<std::size_t>(buffer.len)};
}

Arguments::Bytes Arguments::bytesOrNone(const char* name) {
  if (!isNone()) return bytes(name);
  next();
  return {nullptr, 0};
}

std::vector<std::int8_t> Arguments::steps(const char* name) {
  std::vector<std::int8_t> read;
  PyObject* const from = next();
  if (isWrong_) return read;
  const Reference items(PyUnicode_Check(from) ? nullptr : PySequence_Fast(from, ""));
  if (!items) {
    PyErr_Clear();
    PyErr_Format(PyExc_TypeError, "%s must be whole numbers, not %s", name, Py_TYPE(from)->tp_name);
    isWrong_ = true;
    return read;
  }
  for (Py_ssize_t at = 0; at < PySequence_Fast_GET_SIZE(items.get()) && !isWrong_; ++at) {
    const std::string each = std::string(name) + "[" + std::to_string(at) + "]";
    isWrong_ = !fromPython(PySequence_Fast_GET_ITEM(items.get(), at), each, &read.emplace_back());
  }
  return read;
}

std::vector<const char*> Arguments::texts(const char* name) {
  std::vector<const char*> read;
  PyObject* const from = next();
  if (isWrong_) return read;
  Reference items(PySequence_Tuple(from));
  if (!items) isWrong_ = true;
  for (Py_ssize_t at = 0; !isWrong_ && at < PyTuple_GET_SIZE(items.get()); ++at)
    read.push_back(textOf(PyTuple_GET_ITEM(items.get(), at), name));
  kept_.push_back(std::move(items));
  return read;
}

std::shared_ptr<Wakeup> Arguments::wakeup() {
  PyObject* const from = next();
  if (isWrong_ || from == Py_None) return nullptr;
  auto read = wakeupOf(from);
  isWrong_ = !read;
  return read;
}

zel_picture* Arguments::picture() {
  PyObject* const from = next();
  if (isWrong_) return nullptr;
  zel_picture* const read = pictureOf(from);
  isWrong_ = read == nullptr;
  return read;
}

}  // namespace zel::python

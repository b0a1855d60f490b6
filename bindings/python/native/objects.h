#pragma once

#include <ZELTarkaSDK/zel.h>

#include <atomic>
#include <cstdint>
#include <memory>

#include "bindings/python/native/operation.h"
#include "bindings/python/native/python.h"

// The types of this module, and how objects of them are made. Each that is made is a new reference, or null with an
// exception. What their handles stand for belongs to the process that made them: a child process gets an exception.

namespace zel::python {

enum class Kind { camera, stream, subscription, stitcher };

// A handle, and how it ends.
class Owned {
 public:
  Owned(Kind kind, void* handle) : kind_(kind), handle_(handle) {}
  // Waits, so that it must not be the last reference on a thread of Python that holds the interpreter's lock.
  ~Owned() { end(); }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;

  Kind kind() const { return kind_; }
  void* handle() const { return handle_; }
  // Whether its end waits for threads or servers.
  bool endsSlowly() const { return kind_ == Kind::camera || kind_ == Kind::stream; }
  // Closes or frees it, once; false where that was done.
  bool end();
  bool isEnded() const { return isEnded_; }
  // In a child process: what it stands for is the parent's.
  void forget() { isEnded_ = true; }

 private:
  const Kind kind_;
  void* const handle_;
  std::atomic<bool> isEnded_ = false;
};

// The types, in the module.
bool addTypes(PyObject* module);
bool addPictureTypes(PyObject* module);

PyObject* newHandle(Kind kind, void* handle);
// Null with an exception, where it is another thing or another process's.
std::shared_ptr<Owned> ownedOf(PyObject* object, Kind kind, const char* name);
std::shared_ptr<Owned> ownedOfAnyKind(PyObject* object, const char* name);

PyObject* newCall(std::shared_ptr<Operation> operation);
PyObject* newPicture(zel_picture* picture);
// Null with an exception.
zel_picture* pictureOf(PyObject* object);
// Null with or without an exception: None is no wakeup.
std::shared_ptr<Wakeup> wakeupOf(PyObject* object);

// Raises what the error says, as the package's errors are made of it.
void raise(const zel_error& error);
void raise(zel_status status, const char* message);
void setErrorMaker(PyObject* maker);

// False with an exception in a child process.
bool checkProcess(int generation);

}  // namespace zel::python

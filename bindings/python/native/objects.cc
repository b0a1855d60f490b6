#include "bindings/python/native/objects.h"

#include <algorithm>
#include <new>
#include <utility>

#include "bindings/python/native/results.h"

namespace zel::python {
namespace {

PyObject* errorMaker = nullptr;
PyTypeObject *handleType = nullptr, *callType = nullptr, *wakeupType = nullptr;

constexpr std::int64_t kSlice = 50'000'000;  // nanoseconds, after which signals are looked for

// An object of Python that holds a shared one of this module's.
template <class Held>
struct Holder {
  PyObject_HEAD std::shared_ptr<Held> held;
  int generation;
};

template <class Held>
Holder<Held>* holderOf(PyObject* object) {
  return reinterpret_cast<Holder<Held>*>(object);
}

template <class Held>
PyObject* newHolder(PyTypeObject* type, std::shared_ptr<Held> held) {
  PyObject* const object = type->tp_alloc(type, 0);
  if (object == nullptr) return nullptr;
  new (&holderOf<Held>(object)->held) std::shared_ptr<Held>(std::move(held));
  holderOf<Held>(object)->generation = processGeneration();
  return object;
}

template <class Held>
void freeHolder(PyObject* object) {
  PyTypeObject* const type = Py_TYPE(object);
  holderOf<Held>(object)->held.~shared_ptr();
  type->tp_free(object);
  Py_DECREF(type);
}

template <class Held>
bool isOwn(PyObject* object) {
  return holderOf<Held>(object)->generation == processGeneration();
}

// -- Handles

void freeHandle(PyObject* object) {
  auto& owned = holderOf<Owned>(object)->held;
  if (!isOwn<Owned>(object)) {
    owned->forget();
  } else if (!owned->isEnded() && owned->endsSlowly()) {
    // Whoever drops it last may do so anywhere: it must not wait there.
    const auto operation = std::make_shared<OperationWith<Nothing>>(nullptr);
    if (!runAside(operation, [owned](zel_error*) { return owned->end(), ZEL_OK; })) owned->forget();
  }
  {
    // Its end may wait for a callback, which needs nothing of Python.
    auto last = std::move(owned);
    const WithoutLock unlocked;
    last.reset();
  }
  freeHolder<Owned>(object);
}

PyType_Slot handleSlots[] = {{Py_tp_dealloc, reinterpret_cast<void*>(freeHandle)}, {0, nullptr}};
PyType_Spec handleSpec = {"zeltarkasdk._zel.Handle", sizeof(Holder<Owned>), 0,
                          Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, handleSlots};

// -- Wakeups

PyObject* makeWakeup(PyTypeObject* type, PyObject*, PyObject*) {
  auto wakeup = std::make_shared<Wakeup>();
  if (!wakeup->isUsable()) return PyErr_SetFromErrno(PyExc_OSError);
  return newHolder<Wakeup>(type, std::move(wakeup));
}

PyObject* wakeupFileno(PyObject* self, PyObject*) {
  return PyLong_FromLong(holderOf<Wakeup>(self)->held->descriptor());
}

PyObject* wakeupDrain(PyObject* self, PyObject*) {
  const auto calls = holderOf<Wakeup>(self)->held->drain();
  Reference list(PyList_New(static_cast<Py_ssize_t>(calls.size())));
  for (std::size_t at = 0; list && at < calls.size(); ++at) {
    PyObject* const id = PyLong_FromUnsignedLongLong(calls[at]);
    if (id == nullptr) return nullptr;
    PyList_SET_ITEM(list.get(), static_cast<Py_ssize_t>(at), id);
  }
  return list.release();
}

PyMethodDef wakeupMethods[] = {{"fileno", wakeupFileno, METH_NOARGS, nullptr},
                               {"drain", wakeupDrain, METH_NOARGS, nullptr},
                               {nullptr, nullptr, 0, nullptr}};
PyType_Slot wakeupSlots[] = {{Py_tp_new, reinterpret_cast<void*>(makeWakeup)},
                             {Py_tp_dealloc, reinterpret_cast<void*>(freeHolder<Wakeup>)},
                             {Py_tp_methods, wakeupMethods},
                             {0, nullptr}};
PyType_Spec wakeupSpec = {"zeltarkasdk._zel.Wakeup", sizeof(Holder<Wakeup>), 0, Py_TPFLAGS_DEFAULT, wakeupSlots};

// -- Calls

Operation* operationOf(PyObject* self) {
  if (!checkProcess(holderOf<Operation>(self)->generation)) return nullptr;
  return holderOf<Operation>(self)->held.get();
}

PyObject* callId(PyObject* self, void*) { return PyLong_FromUnsignedLongLong(holderOf<Operation>(self)->held->id()); }
PyObject* callIsDone(PyObject* self, void*) { return PyBool_FromLong(holderOf<Operation>(self)->held->isDone()); }

// wait(seconds): waits for news, at most so long; None: without end. Gives them: 0 none, 1 progress, 2 the end.
PyObject* callWait(PyObject* self, PyObject* seconds) {
  Operation* const operation = operationOf(self);
  if (operation == nullptr) return nullptr;
  double left = seconds == Py_None ? 0 : PyFloat_AsDouble(seconds);
  if (left == -1.0 && PyErr_Occurred() != nullptr) return nullptr;
  const auto kept = holderOf<Operation>(self)->held;
  auto nanoseconds = static_cast<std::int64_t>(left * 1e9);
  for (;;) {
    const Operation::News news = operation->news();
    if (news != Operation::News::none || (seconds != Py_None && nanoseconds <= 0))
      return PyLong_FromLong(static_cast<long>(news));
    const std::int64_t slice = seconds == Py_None ? kSlice : std::min(kSlice, nanoseconds);
    {
      const WithoutLock unlocked;
      operation->wait(slice);
    }
    nanoseconds -= slice;
    if (PyErr_CheckSignals() != 0) return nullptr;
  }
}

PyObject* callProgress(PyObject* self, PyObject*) {
  const auto [done, total] = holderOf<Operation>(self)->held->progress();
  return Py_BuildValue("(KK)", static_cast<unsigned long long>(done), static_cast<unsigned long long>(total));
}

PyObject* callCancel(PyObject* self, PyObject*) {
  const auto operation = holderOf<Operation>(self)->held;
  if (operationOf(self) != nullptr) {
    const WithoutLock unlocked;
    operation->cancel();
  }
  if (PyErr_Occurred() != nullptr) return nullptr;
  Py_RETURN_NONE;
}

// result(): once the call has ended.
PyObject* callResult(PyObject* self, PyObject*) {
  Operation* const operation = operationOf(self);
  if (operation == nullptr) return nullptr;
  if (!operation->isDone()) {
    raise(ZEL_INVALID, "the call has not ended");
    return nullptr;
  }
  if (operation->status() == ZEL_OK) return operation->take();
  raise(operation->error());
  return nullptr;
}

void freeCall(PyObject* object) {
  auto& held = holderOf<Operation>(object)->held;
  if (!isOwn<Operation>(object)) {
    new std::shared_ptr<Operation>(std::move(held));  // its library's call is the parent's: it is left alone
  } else {
    auto last = std::move(held);
    const WithoutLock unlocked;
    last.reset();
  }
  freeHolder<Operation>(object);
}

PyMethodDef callMethods[] = {{"wait", callWait, METH_O, nullptr},
                             {"progress", callProgress, METH_NOARGS, nullptr},
                             {"cancel", callCancel, METH_NOARGS, nullptr},
                             {"result", callResult, METH_NOARGS, nullptr},
                             {nullptr, nullptr, 0, nullptr}};
PyGetSetDef callMembers[] = {{"id", callId, nullptr, nullptr, nullptr},
                             {"is_done", callIsDone, nullptr, nullptr, nullptr},
                             {nullptr, nullptr, nullptr, nullptr, nullptr}};
PyType_Slot callSlots[] = {{Py_tp_dealloc, reinterpret_cast<void*>(freeCall)},
                           {Py_tp_methods, callMethods},
                           {Py_tp_getset, callMembers},
                           {0, nullptr}};
PyType_Spec callSpec = {"zeltarkasdk._zel.Call", sizeof(Holder<Operation>), 0,
                        Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, callSlots};

}  // namespace

bool Owned::end() {
  if (isEnded_.exchange(true)) return false;
  switch (kind_) {
    case Kind::camera:
      zel_close(static_cast<zel_camera*>(handle_));
      break;
    case Kind::stream:
      zel_stream_free(static_cast<zel_stream*>(handle_));
      break;
    case Kind::subscription:
      zel_subscription_free(static_cast<zel_subscription*>(handle_));
      break;
    case Kind::stitcher:
      zel_stitcher_free(static_cast<zel_stitcher*>(handle_));
      break;
  }
  return true;
}

bool addType(PyObject* module, PyType_Spec* spec, PyTypeObject** type) {
  *type = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(spec));
  return *type != nullptr && PyModule_AddType(module, *type) == 0;
}

bool addTypes(PyObject* module) {
  return addType(module, &handleSpec, &handleType) && addType(module, &wakeupSpec, &wakeupType) &&
         addType(module, &callSpec, &callType) && addPictureTypes(module);
}

PyObject* newHandle(Kind kind, void* handle) {
  return newHolder<Owned>(handleType, std::make_shared<Owned>(kind, handle));
}

PyObject* newCall(std::shared_ptr<Operation> operation) { return newHolder<Operation>(callType, std::move(operation)); }

std::shared_ptr<Owned> ownedOfAnyKind(PyObject* object, const char* name) {
  if (Py_TYPE(object) != handleType) {
    PyErr_Format(PyExc_TypeError, "%s is of the wrong type: %s", name, Py_TYPE(object)->tp_name);
    return nullptr;
  }
  if (!checkProcess(holderOf<Owned>(object)->generation)) return nullptr;
  return holderOf<Owned>(object)->held;
}

std::shared_ptr<Owned> ownedOf(PyObject* object, Kind kind, const char* name) {
  auto owned = ownedOfAnyKind(object, name);
  if (!owned || owned->kind() == kind) return owned;
  PyErr_Format(PyExc_TypeError, "%s is a handle of another kind", name);
  return nullptr;
}

std::shared_ptr<Wakeup> wakeupOf(PyObject* object) {
  if (Py_TYPE(object) == wakeupType) return holderOf<Wakeup>(object)->held;
  PyErr_Format(PyExc_TypeError, "wakeup must be a Wakeup or None, not %s", Py_TYPE(object)->tp_name);
  return nullptr;
}

void setErrorMaker(PyObject* maker) {
  Py_INCREF(maker);
  Py_XDECREF(std::exchange(errorMaker, maker));
}

void raise(const zel_error& error) {
  if (errorMaker == nullptr) return PyErr_SetString(PyExc_RuntimeError, error.message);
  const Reference made(PyObject_CallFunction(errorMaker, "issL", static_cast<int>(error.status), error.message,
                                             error.domain, static_cast<long long>(error.code)));
  if (made) PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(made.get())), made.get());
}

void raise(zel_status status, const char* message) {
  zel_error error{};
  error.size = sizeof error;
  error.status = status;
  PyOS_snprintf(error.message, sizeof error.message, "%s", message);
  raise(error);
}

bool checkProcess(int generation) {
  if (generation == processGeneration()) return true;
  raise(ZEL_INVALID,
        "a camera belongs to the process that opened it, and this is a child of it: open the camera in the child, "
        "best in one that multiprocessing has spawned");
  return false;
}

}  // namespace zel::python

#include "bindings/python/native/arguments.h"
#include "bindings/python/native/methods.h"

// The module itself.

namespace zel::python {
namespace {

PyObject* setErrorMakerTo(PyObject*, PyObject* maker) {
  setErrorMaker(maker);
  Py_RETURN_NONE;
}

// settle(seconds): whether all threads of this module have ended within that time.
PyObject* settle(PyObject*, PyObject* seconds) {
  const double limit = PyFloat_AsDouble(seconds);
  if (PyErr_Occurred() != nullptr) return nullptr;
  bool hasSettled = false;
  {
    const WithoutLock unlocked;
    hasSettled = waitForThreads(static_cast<std::int64_t>(limit * 1e9));
  }
  return PyBool_FromLong(hasSettled ? 1 : 0);
}

PyObject* version(PyObject*, PyObject*) { return PyUnicode_FromString(zel_version()); }

PyMethodDef ownTable[] = {{"set_error_maker", setErrorMakerTo, METH_O, nullptr},
                          {"settle", settle, METH_O, nullptr},
                          {"version", version, METH_NOARGS, nullptr},
                          {nullptr, nullptr, 0, nullptr}};

PyModuleDef definition = {
    PyModuleDef_HEAD_INIT, "zeltarkasdk._zel", nullptr, -1, ownTable, nullptr, nullptr, nullptr, nullptr};

}  // namespace
}  // namespace zel::python

PyMODINIT_FUNC PyInit__zel() {
  using namespace zel::python;
  Reference module(PyModule_Create(&definition));
  if (!module || !addTypes(module.get())) return nullptr;
  for (PyMethodDef* const list : {requestMethods(), cameraMethods(), mediaMethods(), streamMethods()}) {
    if (PyModule_AddFunctions(module.get(), list) != 0) return nullptr;
  }
  watchForks();
  return module.release();
}

#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "bindings/python/native/objects.h"
#include "bindings/python/native/values.h"

// Pictures, whose planes show their bytes to whoever takes buffers. A plane keeps its picture, and a buffer its plane.

namespace zel::python {
namespace {

PyTypeObject *pictureType = nullptr, *planeType = nullptr;

// A picture of the library's.
struct Pixels {
  zel_picture* handle;
  zel_picture_data data;
  const int generation = processGeneration();

  explicit Pixels(zel_picture* picture) : handle(picture), data{} { data.size = sizeof data; }
  ~Pixels() {
    if (generation == processGeneration()) zel_picture_free(handle);
  }
  Pixels(const Pixels&) = delete;
  Pixels& operator=(const Pixels&) = delete;
};

struct PictureObject {
  PyObject_HEAD std::shared_ptr<Pixels> pixels;
};

struct PlaneObject {
  PyObject_HEAD std::shared_ptr<Pixels> pixels;
  const zel_plane* plane;
  int dimensions;
  std::array<Py_ssize_t, 3> shape, strides;
};

PictureObject* pictureAt(PyObject* object) { return reinterpret_cast<PictureObject*>(object); }
PlaneObject* planeAt(PyObject* object) { return reinterpret_cast<PlaneObject*>(object); }

template <class Object>
void freeObject(PyObject* object) {
  PyTypeObject* const type = Py_TYPE(object);
  reinterpret_cast<Object*>(object)->pixels.~shared_ptr();
  type->tp_free(object);
  Py_DECREF(type);
}

// -- Planes

PyObject* newPlane(const std::shared_ptr<Pixels>& pixels, const zel_plane& plane, int samples) {
  PyObject* const object = planeType->tp_alloc(planeType, 0);
  if (object == nullptr) return nullptr;
  PlaneObject* const made = planeAt(object);
  new (&made->pixels) std::shared_ptr<Pixels>(pixels);
  made->plane = &plane;
  made->dimensions = samples == 1 ? 2 : 3;
  made->shape = {static_cast<Py_ssize_t>(plane.rows), static_cast<Py_ssize_t>(plane.row_bytes) / samples, samples};
  made->strides = {static_cast<Py_ssize_t>(plane.stride), samples, 1};
  return object;
}

// Of whole rows: one piece of memory only where no padding stands between them.
bool isOnePiece(const PlaneObject& plane) { return plane.plane->stride == plane.plane->row_bytes; }

int showPlane(PyObject* self, Py_buffer* view, int flags) {
  PlaneObject* const plane = planeAt(self);
  const bool wantsFortran = (flags & PyBUF_F_CONTIGUOUS) == PyBUF_F_CONTIGUOUS;
  const bool wantsPiece = (flags & PyBUF_STRIDES) != PyBUF_STRIDES ||
                          (flags & PyBUF_C_CONTIGUOUS) == PyBUF_C_CONTIGUOUS ||
                          (flags & PyBUF_ANY_CONTIGUOUS) == PyBUF_ANY_CONTIGUOUS;
  view->obj = nullptr;
  if ((flags & PyBUF_WRITABLE) == PyBUF_WRITABLE) {
    PyErr_SetString(PyExc_BufferError, "a picture is shared, and cannot be written to; take a copy");
    return -1;
  }
  if (wantsFortran || (wantsPiece && !isOnePiece(*plane))) {
    PyErr_SetString(PyExc_BufferError,
                    "the rows of this plane stand apart in memory; numpy.asarray() and bytes() take them");
    return -1;
  }
  view->buf = const_cast<std::uint8_t*>(plane->plane->data);
  view->len = static_cast<Py_ssize_t>(plane->plane->row_bytes * plane->plane->rows);
  view->readonly = 1;
  view->itemsize = 1;
  view->format = (flags & PyBUF_FORMAT) == PyBUF_FORMAT ? const_cast<char*>("B") : nullptr;
  view->ndim = (flags & PyBUF_ND) == PyBUF_ND ? plane->dimensions : 1;
  view->shape = (flags & PyBUF_ND) == PyBUF_ND ? plane->shape.data() : nullptr;
  view->strides = (flags & PyBUF_STRIDES) == PyBUF_STRIDES ? plane->strides.data() : nullptr;
  view->suboffsets = nullptr;
  view->internal = nullptr;
  Py_INCREF(self);
  view->obj = self;
  return 0;
}

PyObject* sizesOf(const std::array<Py_ssize_t, 3>& sizes, int dimensions) {
  Reference tuple(PyTuple_New(dimensions));
  for (int at = 0; tuple && at < dimensions; ++at)
    PyTuple_SET_ITEM(tuple.get(), at, PyLong_FromSsize_t(sizes[static_cast<std::size_t>(at)]));
  return tuple.release();
}

PyObject* planeShape(PyObject* self, void*) { return sizesOf(planeAt(self)->shape, planeAt(self)->dimensions); }
PyObject* planeStrides(PyObject* self, void*) { return sizesOf(planeAt(self)->strides, planeAt(self)->dimensions); }

// The bytes of all rows, one after the other.
PyObject* planeBytes(PyObject* self, PyObject*) {
  const zel_plane& plane = *planeAt(self)->plane;
  Reference bytes(PyBytes_FromStringAndSize(nullptr, static_cast<Py_ssize_t>(plane.row_bytes * plane.rows)));
  if (!bytes) return nullptr;
  char* to = PyBytes_AS_STRING(bytes.get());
  for (std::size_t row = 0; row < plane.rows; ++row, to += plane.row_bytes)
    std::memcpy(to, plane.data + row * plane.stride, plane.row_bytes);
  return bytes.release();
}

PyMethodDef planeMethods[] = {{"tobytes", planeBytes, METH_NOARGS, "The bytes of all rows, one after the other."},
                              {"__bytes__", planeBytes, METH_NOARGS, nullptr},
                              {nullptr, nullptr, 0, nullptr}};
PyGetSetDef planeMembers[] = {
    {"shape", planeShape, nullptr, "Rows, samples in a row, and bytes of a sample where they are more than one.",
     nullptr},
    {"strides", planeStrides, nullptr, "Bytes from one to the next of each dimension.", nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr}};
PyType_Slot planeSlots[] = {{Py_tp_dealloc, reinterpret_cast<void*>(freeObject<PlaneObject>)},
                            {Py_tp_methods, planeMethods},
                            {Py_tp_getset, planeMembers},
                            {Py_bf_getbuffer, reinterpret_cast<void*>(showPlane)},
                            {0, nullptr}};
PyType_Spec planeSpec = {"zeltarkasdk._zel.Plane", sizeof(PlaneObject), 0,
                         Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, planeSlots};

// -- Pictures

const zel_picture_data& dataOf(PyObject* self) { return pictureAt(self)->pixels->data; }

PyObject* pictureLuma(PyObject* self, void*) { return newPlane(pictureAt(self)->pixels, dataOf(self).luma, 1); }
PyObject* pictureChroma(PyObject* self, void*) { return newPlane(pictureAt(self)->pixels, dataOf(self).chroma, 2); }
PyObject* pictureWidth(PyObject* self, void*) { return toPython(dataOf(self).width); }
PyObject* pictureHeight(PyObject* self, void*) { return toPython(dataOf(self).height); }
PyObject* pictureTime(PyObject* self, void*) { return toPython(dataOf(self).time); }
PyObject* pictureColour(PyObject* self, void*) {
  const zel_picture_data& data = dataOf(self);
  return tupleOf(toPython(data.primaries), toPython(data.transfer), toPython(data.matrix));
}

PyGetSetDef pictureMembers[] = {
    {"luma", pictureLuma, nullptr, nullptr, nullptr},   {"chroma", pictureChroma, nullptr, nullptr, nullptr},
    {"width", pictureWidth, nullptr, nullptr, nullptr}, {"height", pictureHeight, nullptr, nullptr, nullptr},
    {"time", pictureTime, nullptr, nullptr, nullptr},   {"colour", pictureColour, nullptr, nullptr, nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr}};
PyType_Slot pictureSlots[] = {
    {Py_tp_dealloc, reinterpret_cast<void*>(freeObject<PictureObject>)}, {Py_tp_getset, pictureMembers}, {0, nullptr}};
PyType_Spec pictureSpec = {"zeltarkasdk._zel.Pixels", sizeof(PictureObject), 0,
                           Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, pictureSlots};

}  // namespace

bool addPictureTypes(PyObject* module) {
  pictureType = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&pictureSpec));
  planeType = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&planeSpec));
  return pictureType != nullptr && planeType != nullptr && PyModule_AddType(module, pictureType) == 0 &&
         PyModule_AddType(module, planeType) == 0;
}

PyObject* newPicture(zel_picture* picture) {
  auto pixels = std::make_shared<Pixels>(picture);
  zel_error error{};
  error.size = sizeof error;
  if (zel_picture_get(picture, &pixels->data, &error) != ZEL_OK) return raise(error), nullptr;
  PyObject* const object = pictureType->tp_alloc(pictureType, 0);
  if (object != nullptr) new (&pictureAt(object)->pixels) std::shared_ptr<Pixels>(std::move(pixels));
  return object;
}

zel_picture* pictureOf(PyObject* object) {
  if (Py_TYPE(object) != pictureType) {
    PyErr_Format(PyExc_TypeError, "a Picture is needed, not %s", Py_TYPE(object)->tp_name);
    return nullptr;
  }
  const auto& pixels = pictureAt(object)->pixels;
  return checkProcess(pixels->generation) ? pixels->handle : nullptr;
}

}  // namespace zel::python

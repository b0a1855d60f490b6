#include "bindings/python/native/results.h"

namespace zel::python {

PyObject* toPython(const Text& text) { return toPython(text.text); }

PyObject* toPython(const Bytes& bytes) {
  if (bytes.data == nullptr) Py_RETURN_NONE;
  return bytesToPython(bytes.data, bytes.length);
}

PyObject* toPython(const zel_event& event) {
  return tupleOf(toPython(event.type), toPython(event.numbers), toPython(event.text), PyBool_FromLong(event.failed));
}

PyObject* toPython(const zel_error& problem) {
  return tupleOf(toPython(static_cast<int>(problem.status)), toPython(static_cast<const char*>(problem.message)),
                 toPython(static_cast<const char*>(problem.domain)), toPython(problem.code));
}

PyObject* toPython(zel_camera*& camera) { return newHandle(Kind::camera, std::exchange(camera, nullptr)); }
PyObject* toPython(zel_stream*& stream) { return newHandle(Kind::stream, std::exchange(stream, nullptr)); }
PyObject* toPython(zel_picture*& picture) { return newPicture(std::exchange(picture, nullptr)); }

PyObject* toPython(zel_photo*& photo) {
  zel_error error{};
  error.size = sizeof error;
  zel_photo_data stored{};
  stored.size = sizeof stored;
  if (zel_photo_get(photo, &stored, &error) != ZEL_OK) return raise(error), nullptr;
  Reference pictures(PyTuple_New(static_cast<Py_ssize_t>(stored.pictures)));
  for (std::size_t at = 0; pictures && at < stored.pictures; ++at) {
    zel_jpeg_data jpeg{};
    jpeg.size = sizeof jpeg;
    if (zel_photo_get_jpeg(photo, at, &jpeg, &error) != ZEL_OK) return raise(error), nullptr;
    PyObject* const picture = tupleOf(toPython(jpeg.name), bytesToPython(jpeg.data, jpeg.length));
    if (picture == nullptr) return nullptr;
    PyTuple_SET_ITEM(pictures.get(), static_cast<Py_ssize_t>(at), picture);
  }
  return tupleOf(tupleOf(toPython(stored.time), toPython(stored.size_bytes), toPython(stored.name)),
                 pictures.release());
}

PyObject* toPython(zel_packet*& packet) {
  zel_error error{};
  error.size = sizeof error;
  zel_packet_data data{};
  data.size = sizeof data;
  if (zel_packet_get(packet, &data, &error) != ZEL_OK) return raise(error), nullptr;
  return tupleOf(toPython(static_cast<int>(data.track)), PyBool_FromLong(data.key), PyBool_FromLong(data.discontinuity),
                 toPython(data.time), bytesToPython(data.data, data.length));
}

}  // namespace zel::python

#pragma once

#include <ZELTarkaSDK/zel.h>

#include <memory>
#include <utility>

#include "bindings/python/native/objects.h"
#include "bindings/python/native/operation.h"
#include "bindings/python/native/records.h"
#include "bindings/python/native/values.h"

// What calls give: each type has how it comes to Python, and how it is freed where nobody takes it.

namespace zel::python {

// Structs of the library tell their size before.
template <class Out>
void prepare(Out& out) {
  if constexpr (requires { out.size; }) out.size = sizeof out;
}

template <class Out>
void disposeOf(Out&) {}

struct Nothing {};
inline PyObject* toPython(const Nothing&) { Py_RETURN_NONE; }

// Texts and bytes that zel_free() frees.
struct Text {
  char* text = nullptr;
};
PyObject* toPython(const Text& text);
inline void disposeOf(Text& text) { zel_free(std::exchange(text.text, nullptr)); }

struct Bytes {
  std::uint8_t* data = nullptr;
  std::size_t length = 0;
};
PyObject* toPython(const Bytes& bytes);
inline void disposeOf(Bytes& bytes) { zel_free(std::exchange(bytes.data, nullptr)); }

inline void disposeOf(zel_stored_file_result& file) { zel_free(std::exchange(file.name, nullptr)); }

PyObject* toPython(const zel_event& event);
inline void disposeOf(zel_event& event) { zel_free(std::exchange(event.text, nullptr)); }
PyObject* toPython(const zel_error& problem);
inline PyObject* toPython(const zel_link_state& state) { return toPython(static_cast<int>(state)); }

// Handles. What has become a Python object is no longer freed here.
PyObject* toPython(zel_camera*& camera);
PyObject* toPython(zel_stream*& stream);
PyObject* toPython(zel_photo*& photo);
PyObject* toPython(zel_picture*& picture);
PyObject* toPython(zel_packet*& packet);
inline void disposeOf(zel_camera*& camera) { zel_close(std::exchange(camera, nullptr)); }
inline void disposeOf(zel_stream*& stream) { zel_stream_free(std::exchange(stream, nullptr)); }
inline void disposeOf(zel_photo*& photo) { zel_photo_free(std::exchange(photo, nullptr)); }
inline void disposeOf(zel_picture*& picture) { zel_picture_free(std::exchange(picture, nullptr)); }
inline void disposeOf(zel_packet*& packet) { zel_packet_free(std::exchange(packet, nullptr)); }

PyObject* toPython(const zel_output_report& report);

template <class Out>
class OperationWith final : public Operation {
 public:
  explicit OperationWith(std::shared_ptr<Wakeup> wakeup) : Operation(std::move(wakeup)) { prepare(out); }
  ~OperationWith() override {
    giveUp();
    dispose();
  }

  PyObject* take() override { return toPython(out); }
  void dispose() override { disposeOf(out); }

  Out out{};
};

}  // namespace zel::python

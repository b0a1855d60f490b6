#include "bindings/python/native/arguments.h"
#include "bindings/python/native/methods.h"

// Streams and their outputs.

namespace zel::python {
namespace {

// stream(camera, wakeup, limit, width, height, fps, addresses, stitched, its width, its height, bit rate, remove
// purple, logo, its width, its height, its angle)
PyObject* start(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 16);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int limit = given.number<int>("time_limit");
  const zel_format format = formatFrom(given);
  const auto addresses = given.texts("outputs");
  zel_stream_options options{};
  options.size = sizeof options;
  options.format = &format;
  options.addresses = addresses.data();
  options.address_count = addresses.size();
  options.stitched = given.number<int>("stitched");
  options.stitched_width = given.number<std::int32_t>("width");
  options.stitched_height = given.number<std::int32_t>("height");
  options.stitched_bitrate = given.number<std::int64_t>("bitrate");
  options.remove_purple = given.number<int>("remove_purple");
  const LogoPixels logo(given);
  logo.putInto(options);
  if (given.isWrong() || !logo.isWhole()) return nullptr;
  return given.begin<zel_stream*>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_stream_start(cameraOf(*camera), &options, limit, out, &Operation::onDone, &operation,
                                  operation.call(), error);
  });
}

// Runs what waits for outputs on a thread of its own. work: with the stream, the result and the error.
template <class Out, class Work>
PyObject* aside(Arguments& given, const std::shared_ptr<Owned>& stream, std::shared_ptr<Wakeup> wakeup,
                const Work& work) {
  if (given.isWrong()) return nullptr;
  const auto operation = std::make_shared<OperationWith<Out>>(std::move(wakeup));
  auto* const out = &operation->out;
  if (runAside(operation, [stream, out, work](zel_error* error) { return work(streamOf(*stream), out, error); }))
    return newCall(operation);
  raise(ZEL_PLATFORM, "the system has no thread left");
  return nullptr;
}

PyObject* stop(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 2);
  const auto stream = given.handle(Kind::stream, "stream");
  auto wakeup = given.wakeup();
  return aside<Nothing>(given, stream, std::move(wakeup), [](zel_stream* stopped, Nothing*, zel_error* error) {
    return zel_stream_stop(stopped, error);
  });
}

PyObject* removeOutput(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto stream = given.handle(Kind::stream, "stream");
  auto wakeup = given.wakeup();
  const int id = given.number<int>("id");
  return aside<zel_output_report>(given, stream, std::move(wakeup),
                                  [id](zel_stream* with, zel_output_report* report, zel_error* error) {
                                    return zel_stream_remove_output(with, id, report, error);
                                  });
}

PyObject* addOutput(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 2);
  const auto stream = given.handle(Kind::stream, "stream");
  const char* const address = given.text("address");
  int id = 0;
  if (given.isWrong() ||
      !called([&](zel_error* error) { return zel_stream_add_output(streamOf(*stream), address, &id, error); }))
    return nullptr;
  return toPython(id);
}

PyObject* outputs(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 1);
  const auto stream = given.handle(Kind::stream, "stream");
  Reference list(given.isWrong() ? nullptr : PyList_New(0));
  for (std::size_t at = 0; list; ++at) {
    zel_output_report report{};
    report.size = sizeof report;
    zel_error error{};
    error.size = sizeof error;
    const zel_status status = zel_stream_get_output(streamOf(*stream), at, &report, &error);
    if (status == ZEL_INVALID) break;
    if (status != ZEL_OK) return raise(error), nullptr;
    const Reference one(toPython(report));
    if (!one || PyList_Append(list.get(), one.get()) != 0) return nullptr;
  }
  return list.release();
}

PyObject* headers(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 1);
  const auto stream = given.handle(Kind::stream, "stream");
  zel_stream_headers told{};
  told.size = sizeof told;
  if (given.isWrong() ||
      !called([&](zel_error* error) { return zel_stream_get_headers(streamOf(*stream), &told, error); }))
    return nullptr;
  return tupleOf(toPython(told.width), toPython(told.height), PyBool_FromLong(told.spherical),
                 bytesToPython(told.sps, told.sps_length), bytesToPython(told.pps, told.pps_length),
                 bytesToPython(told.audio_config, told.audio_config_length));
}

PyObject* statistics(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 1);
  const auto stream = given.handle(Kind::stream, "stream");
  zel_stream_statistics told{};
  told.size = sizeof told;
  if (given.isWrong() ||
      !called([&](zel_error* error) { return zel_stream_get_statistics(streamOf(*stream), &told, error); }))
    return nullptr;
  return toPython(told);
}

template <auto subscribe>
PyObject* subscription(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto stream = given.handle(Kind::stream, "stream");
  const zel_queue_options queue = queueFrom(given);
  if (given.isWrong()) return nullptr;
  return newSubscription([&](zel_subscription** out, zel_error* error) {
    return subscribe(streamOf(*stream), &queue, nullptr, nullptr, out, error);
  });
}

PyMethodDef streamTable[] = {
    method<start>("stream"),
    method<stop>("stream_stop"),
    method<removeOutput>("stream_remove_output"),
    method<addOutput>("stream_add_output"),
    method<outputs>("stream_outputs"),
    method<headers>("stream_headers"),
    method<statistics>("stream_statistics"),
    method<subscription<zel_stream_packets>>("stream_packets"),
    method<subscription<zel_stream_problems>>("stream_problems"),
    {nullptr, nullptr, 0, nullptr},
};

}  // namespace

PyMethodDef* streamMethods() { return streamTable; }

}  // namespace zel::python

#include "bindings/python/native/arguments.h"
#include "bindings/python/native/methods.h"

// The camera itself, and subscriptions.

namespace zel::python {

// Makes a call that does not wait for the camera; the interpreter's lock is released meanwhile. False with an
// exception.
bool called(const std::function<zel_status(zel_error*)>& call) {
  zel_error error{};
  error.size = sizeof error;
  zel_status status = ZEL_OK;
  {
    const WithoutLock unlocked;
    status = call(&error);
  }
  if (status != ZEL_OK) raise(error);
  return status == ZEL_OK;
}

PyObject* newSubscription(const std::function<zel_status(zel_subscription**, zel_error*)>& subscribe) {
  zel_subscription* subscription = nullptr;
  if (!called([&](zel_error* error) { return subscribe(&subscription, error); })) return nullptr;
  return newHandle(Kind::subscription, subscription);
}

zel_queue_options queueFrom(Arguments& given) {
  zel_queue_options queue{};
  queue.size = sizeof queue;
  queue.capacity = given.number<std::uint32_t>("capacity");
  queue.drop_newest = given.number<int>("drop_newest");
  return queue;
}

namespace {

// open(wakeup, serial number, accessories folder, program, open limit, limit, transfer limit, decoder threads, direct)
PyObject* open(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 9);
  auto wakeup = given.wakeup();
  zel_options options{};
  options.size = sizeof options;
  options.serial_number = given.textOrNone("serial_number");
  options.accessories_folder = given.textOrNone("accessories");
  options.program = given.textOrNone("program");
  options.open_time_limit = given.number<int>("open_time_limit");
  options.time_limit = given.number<int>("time_limit");
  options.transfer_time_limit = given.number<int>("transfer_time_limit");
  options.decoder_threads = given.number<int>("decoder_threads");
  options.direct = given.number<int>("direct");
  return given.begin<zel_camera*>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_open(&options, out, &Operation::onDone, &operation, operation.call(), error);
  });
}

// end(handle, wakeup): closes or frees what it stands for, on a thread of its own.
PyObject* end(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  if (count != 2) return PyErr_SetString(PyExc_TypeError, "2 arguments are needed"), nullptr;
  const auto owned = ownedOfAnyKind(arguments[0], "the handle");
  if (!owned) return nullptr;
  auto wakeup = arguments[1] == Py_None ? nullptr : wakeupOf(arguments[1]);
  if (PyErr_Occurred() != nullptr) return nullptr;
  const auto operation = std::make_shared<OperationWith<Nothing>>(std::move(wakeup));
  if (!runAside(operation, [owned](zel_error*) { return owned->end(), ZEL_OK; })) {
    raise(ZEL_PLATFORM, "the system has no thread left");
    return nullptr;
  }
  return newCall(operation);
}

// free(handle): the same, here.
PyObject* freeHere(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  if (count != 1) return PyErr_SetString(PyExc_TypeError, "1 argument is needed"), nullptr;
  const auto owned = ownedOfAnyKind(arguments[0], "the handle");
  if (!owned) return nullptr;
  {
    const WithoutLock unlocked;
    owned->end();
  }
  Py_RETURN_NONE;
}

PyObject* identity(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 2);
  const auto camera = given.handle(Kind::camera, "camera");
  const int which = given.number<int>("which");
  Text text;
  if (given.isWrong() ||
      !called([&](zel_error* error) { return zel_get_identity(cameraOf(*camera), which, &text.text, error); }))
    return nullptr;
  PyObject* const told = toPython(text);
  disposeOf(text);
  return told;
}

PyObject* linkState(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 1);
  const auto camera = given.handle(Kind::camera, "camera");
  zel_link_state state{};
  if (given.isWrong() ||
      !called([&](zel_error* error) { return zel_get_link_state(cameraOf(*camera), &state, error); }))
    return nullptr;
  return toPython(state);
}

PyObject* linkStatistics(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 1);
  const auto camera = given.handle(Kind::camera, "camera");
  zel_link_statistics statistics{};
  statistics.size = sizeof statistics;
  if (given.isWrong() ||
      !called([&](zel_error* error) { return zel_get_link_statistics(cameraOf(*camera), &statistics, error); }))
    return nullptr;
  return toPython(statistics);
}

// -- Subscriptions

PyObject* events(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  const zel_queue_options queue = queueFrom(given);
  if (given.isWrong()) return nullptr;
  return newSubscription([&](zel_subscription** out, zel_error* error) {
    return zel_events(cameraOf(*camera), &queue, nullptr, nullptr, out, error);
  });
}

PyObject* linkChanges(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  const zel_queue_options queue = queueFrom(given);
  if (given.isWrong()) return nullptr;
  return newSubscription([&](zel_subscription** out, zel_error* error) {
    return zel_link_changes(cameraOf(*camera), &queue, nullptr, nullptr, out, error);
  });
}

PyObject* dropped(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 1);
  const auto subscription = given.handle(Kind::subscription, "subscription");
  std::uint64_t number = 0;
  if (given.isWrong() || !called([&](zel_error* error) {
        return zel_subscription_dropped(subscriptionOf(*subscription), &number, error);
      }))
    return nullptr;
  return toPython(number);
}

// next_...(subscription, wakeup): the next one of a subscription.
template <class Out, auto begin>
PyObject* next(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 2);
  const auto subscription = given.handle(Kind::subscription, "subscription");
  auto wakeup = given.wakeup();
  return given.begin<Out>(std::move(wakeup), [&](Operation& operation, Out* out, zel_error* error) {
    return begin(subscriptionOf(*subscription), 0, out, &Operation::onDone, &operation, operation.call(), error);
  });
}

PyMethodDef cameraTable[] = {
    method<open>("open"),
    method<end>("end"),
    method<freeHere>("free"),
    method<identity>("identity"),
    method<linkState>("link_state"),
    method<linkStatistics>("link_statistics"),
    method<events>("events"),
    method<linkChanges>("link_changes"),
    method<dropped>("dropped"),
    method<next<zel_event, zel_begin_next_event>>("next_event"),
    method<next<zel_link_state, zel_begin_next_link_state>>("next_link_state"),
    method<next<zel_picture*, zel_begin_next_picture>>("next_picture"),
    method<next<zel_packet*, zel_begin_next_packet>>("next_packet"),
    method<next<zel_error, zel_begin_next_problem>>("next_problem"),
    {nullptr, nullptr, 0, nullptr},
};

}  // namespace

PyMethodDef* cameraMethods() { return cameraTable; }

}  // namespace zel::python

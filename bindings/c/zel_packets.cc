#include <ZELTarkaSDK/zel.h>

#include "bindings/c/stream_object.h"
#include "bindings/c/subscriptions.h"

// What a stream gives to subscribers.

namespace zel::c {
namespace {

constexpr std::size_t kPacketCapacity = 256, kProblemCapacity = 16;

struct PacketObject {
  using Handle = zel_packet;
  static constexpr Kind kKind = Kind::packet;

  MediaPacket packet;
};

zel_packet* handleFor(const MediaPacket& packet) {
  return newHandle(std::make_shared<PacketObject>(PacketObject{packet}));
}

std::function<void(const MediaPacket&)> deliverTo(zel_packet_callback callback, void* user) {
  if (callback == nullptr) return {};
  return [callback, user](const MediaPacket& packet) {
    zel_packet* handle = nullptr;
    // A packet for which there is no memory is lost.
    if (guarded(nullptr, [&] { handle = handleFor(packet); }) == ZEL_OK) callback(user, handle);
  };
}

std::function<void(const StreamProblem&)> deliverTo(zel_problem_callback callback, void* user) {
  if (callback == nullptr) return {};
  return [callback, user](const StreamProblem& problem) {
    zel_error told{};
    told.size = sizeof told;
    tellFailure(&told, problem.error);
    callback(user, &told);
  };
}

}  // namespace
}  // namespace zel::c

using namespace zel::c;

zel_status zel_stream_packets(zel_stream* stream, const zel_queue_options* queue, zel_packet_callback callback,
                              void* user, zel_subscription** subscription, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(subscription, "subscription");
    const auto options = queueOf(queue, kPacketCapacity);
    const auto object = objectOf<StreamObject>(stream);
    subscribe(object->stream.packets(options), object->isOnCameraThread, deliverTo(callback, user), subscription);
  });
}

zel_status zel_stream_problems(zel_stream* stream, const zel_queue_options* queue, zel_problem_callback callback,
                               void* user, zel_subscription** subscription, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(subscription, "subscription");
    const auto options = queueOf(queue, kProblemCapacity);
    const auto object = objectOf<StreamObject>(stream);
    subscribe(object->stream.problems(options), object->isOnCameraThread, deliverTo(callback, user), subscription);
  });
}

zel_status zel_next_packet(zel_subscription* subscription, int time_limit, zel_packet** packet, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(packet, "packet");
    *packet = handleFor(nextOf<zel::MediaPacket>(subscription, time_limit));
  });
}

zel_status zel_next_problem(zel_subscription* subscription, int time_limit, zel_error* problem, zel_error* error) {
  return guarded(error, [&] {
    checkSized(problem, "problem");
    tellFailure(problem, nextOf<zel::StreamProblem>(subscription, time_limit).error);
  });
}

zel_status zel_begin_next_packet(zel_subscription* subscription, int time_limit, zel_packet** packet,
                                 zel_done_callback callback, void* user, zel_call** call, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(packet, "packet");
    beginNext<zel::MediaPacket>(subscription, time_limit, {callback, user, call},
                                [packet](const zel::MediaPacket& next) { *packet = handleFor(next); });
  });
}

zel_status zel_begin_next_problem(zel_subscription* subscription, int time_limit, zel_error* problem,
                                  zel_done_callback callback, void* user, zel_call** call, zel_error* error) {
  return guarded(error, [&] {
    checkSized(problem, "problem");
    beginNext<zel::StreamProblem>(subscription, time_limit, {callback, user, call},
                                  [problem](const zel::StreamProblem& next) { tellFailure(problem, next.error); });
  });
}

zel_status zel_packet_get(zel_packet* packet, zel_packet_data* data, zel_error* error) {
  return guarded(error, [&] {
    checkSized(data, "data");
    const auto object = objectOf<PacketObject>(packet);
    const zel::MediaPacket& from = object->packet;
    give(data, zel_packet_data{0, from.track == zel::Track::video ? ZEL_VIDEO : ZEL_AUDIO, from.key ? 1 : 0,
                               from.discontinuity ? 1 : 0, from.time, from.data.bytes().data(), from.data.size()});
  });
}

zel_status zel_packet_free(zel_packet* packet) {
  return guarded(nullptr, [&] {
    if (packet != nullptr) takeObject<PacketObject>(packet);
  });
}

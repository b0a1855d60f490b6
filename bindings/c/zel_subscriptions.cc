#include <ZELTarkaSDK/zel.h>

#include "bindings/c/subscriptions.h"

// Events, the states of the link, and what all subscriptions have in common.

namespace zel::c {

SubscriptionOptions queueOf(const zel_queue_options* queue, std::size_t capacity) {
  const zel_queue_options given = takenOrZero(queue, "queue");
  return {.capacity = given.capacity == 0 ? capacity : given.capacity,
          .drop = given.drop_newest != 0 ? SubscriptionOptions::Drop::newest : SubscriptionOptions::Drop::oldest};
}

namespace {

constexpr std::size_t kCapacity = 16;

// Without its text.
zel_event eventOf(const Event& from) {
  zel_event event{};
  event.size = sizeof event;
  event.type = static_cast<std::int64_t>(from.type);
  std::ranges::copy(from.numbers, event.numbers);
  event.failed = from.failed ? 1 : 0;
  return event;
}

// With its text, which the program frees.
zel_event ownedEventOf(const Event& from) {
  zel_event event = eventOf(from);
  event.text = textOut(from.text);
  return event;
}

std::function<void(const Event&)> deliverTo(zel_event_callback callback, void* user) {
  if (callback == nullptr) return {};
  return [callback, user](const Event& from) {
    zel_event event = eventOf(from);
    std::optional<std::string> text = from.text;
    if (text) event.text = text->data();
    callback(user, &event);
  };
}

std::function<void(const LinkStatus&)> deliverTo(zel_link_callback callback, void* user) {
  if (callback == nullptr) return {};
  return [callback, user](const LinkStatus& status) { callback(user, static_cast<zel_link_state>(status)); };
}

}  // namespace
}  // namespace zel::c

using namespace zel::c;

zel_status zel_events(zel_camera* camera, const zel_queue_options* queue, zel_event_callback callback, void* user,
                      zel_subscription** subscription, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(subscription, "subscription");
    const auto options = queueOf(queue, kCapacity);
    const auto object = objectOf<CameraObject>(camera);
    subscribe(object->with([&](zel::Camera& asked) { return asked.events(options); }), object->callsOnCameraThread(),
              deliverTo(callback, user), subscription);
  });
}

zel_status zel_link_changes(zel_camera* camera, const zel_queue_options* queue, zel_link_callback callback, void* user,
                            zel_subscription** subscription, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(subscription, "subscription");
    const auto options = queueOf(queue, kCapacity);
    const auto object = objectOf<CameraObject>(camera);
    subscribe(object->with([&](zel::Camera& asked) { return asked.linkChanges(options); }),
              object->callsOnCameraThread(), deliverTo(callback, user), subscription);
  });
}

zel_status zel_next_event(zel_subscription* subscription, int time_limit, zel_event* event, zel_error* error) {
  return guarded(error, [&] {
    checkSized(event, "event");
    give(event, ownedEventOf(nextOf<zel::Event>(subscription, time_limit)));
  });
}

zel_status zel_begin_next_event(zel_subscription* subscription, int time_limit, zel_event* event,
                                zel_done_callback callback, void* user, zel_call** call, zel_error* error) {
  return guarded(error, [&] {
    checkSized(event, "event");
    beginNext<zel::Event>(subscription, time_limit, {callback, user, call},
                          [event](const zel::Event& next) { give(event, ownedEventOf(next)); });
  });
}

zel_status zel_next_link_state(zel_subscription* subscription, int time_limit, zel_link_state* state,
                               zel_error* error) {
  return guarded(error, [&] {
    checkGiven(state, "state");
    *state = static_cast<zel_link_state>(nextOf<zel::LinkStatus>(subscription, time_limit));
  });
}

zel_status zel_begin_next_link_state(zel_subscription* subscription, int time_limit, zel_link_state* state,
                                     zel_done_callback callback, void* user, zel_call** call, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(state, "state");
    beginNext<zel::LinkStatus>(subscription, time_limit, {callback, user, call},
                               [state](zel::LinkStatus next) { *state = static_cast<zel_link_state>(next); });
  });
}

zel_status zel_subscription_dropped(zel_subscription* subscription, uint64_t* dropped, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(dropped, "dropped");
    *dropped = objectOf<SubscriptionObject>(subscription)->dropped();
  });
}

zel_status zel_subscription_free(zel_subscription* subscription) {
  return guarded(nullptr, [&] {
    if (subscription != nullptr) takeObject<SubscriptionObject>(subscription)->close();
  });
}

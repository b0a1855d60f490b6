#pragma once

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELError.h>

#include <memory>
#include <optional>
#include <tuple>
#include <utility>

#include <ZELTarkaSDK/platform/ports.h>

namespace zel::app {

// What came of a request. Shared with its handler, which may be called when nobody waits any more.
// Thread: main thread.
template <class... Values>
struct Answer {
  bool done = false;
  std::optional<ZELError> error;
  std::tuple<Values...> values;
};

// A handler that keeps what it is called with, whatever thread that is, and ends a run of the main queue.
template <class... Values>
auto keepIn(const std::shared_ptr<Answer<Values...>>& answer, LinuxPlatform& platform) {
  return [answer, &platform](const std::optional<ZELError>& error, const auto&... values) {
    platform.ports().queues.mainQueue().post(
        [answer, &platform, error, values = std::tuple<Values...>(values...)]() mutable {
          *answer = {true, error, std::move(values)};
          platform.stopMainQueue();
        });
  };
}

}  // namespace zel::app

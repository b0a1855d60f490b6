#pragma once

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELError.h>

#include <memory>
#include <optional>
#include <tuple>
#include <utility>

#include <ZELTarkaSDK/platform/ports.h>

namespace zel::app {

// The result of a request. Shared with its handler, which may be called after the wait has ended.
// Thread: main thread.
template <class... Values>
struct Answer {
  bool done = false;
  std::optional<ZELError> error;
  std::tuple<Values...> values;
};

// A handler that stores its arguments, on any thread, and stops the main queue.
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

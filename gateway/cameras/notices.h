#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace zel::gateway {

// Something that happened at a camera.
struct Notice {
  enum class Kind { camera, link, statistics };  // an event of its own, a new status, what it has counted

  Kind kind = Kind::camera;
  nlohmann::ordered_json value;
};

constexpr std::string_view toString(Notice::Kind kind) {
  switch (kind) {
    case Notice::Kind::camera:
      return "camera";
    case Notice::Kind::link:
      return "link";
    case Notice::Kind::statistics:
      return "statistics";
  }
  return "camera";
}

// Hands notices to everybody who takes them.
//
// Thread: any thread. Takers run on the thread that posts, one notice at a time, and must not wait.
class Notices {
 public:
  using Taker = std::function<void(const Notice&)>;

  // Takes notices until the returned token is destroyed; after that the taker neither runs nor is running. Not to be
  // destroyed inside a taker.
  [[nodiscard]] std::shared_ptr<void> take(Taker taker);
  void post(const Notice& notice);
  bool isTaken() const;

 private:
  struct State {
    mutable std::mutex mutex;
    std::map<int, Taker> takers;
    int next = 0;
  };
  const std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace zel::gateway

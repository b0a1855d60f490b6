#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "simulator/camera_state.h"
#include "simulator/camera_world.h"
#include "simulator/faults.h"
#include "simulator/photo_studio.h"

namespace zel::simulator {

inline constexpr std::uint16_t kShutter = 0x0007, kShutterExtra = 0x0011, kShutterBracketed = 0x000F;

// Single photos and brackets. The reply names the first; the pictures follow in separate frames.
// Thread: the simulator's; pictures are rendered on the worker.
class Captures {
 public:
  // Owner:  all outlive it and the worker's jobs.
  Captures(CameraWorld& world, CameraState& state, const Faults& faults)
      : world_(world), state_(state), faults_(faults), studio_(std::make_shared<PhotoStudio>()) {}

  bool busy() const { return busy_; }

  // code: one of the three above. Refuses, with an empty body: bodies of the wrong length, a bracket without steps or
  // with more than nine, a capture during another, and one for which the card has no space.
  void shoot(const std::shared_ptr<HostLink>& host, std::uint16_t code, const Bytes& body);

 private:
  struct Order {
    std::shared_ptr<HostLink> host;
    std::uint16_t code = 0;
    Bytes sensors, extra;
    std::vector<double> stops;  // of each picture
    std::uint32_t time = 0;
    std::vector<std::string> names;
  };

  static bool read(std::uint16_t code, const Bytes& body, Order& order);
  void begin(Order order);
  void finish(const Order& order, const std::vector<Bytes>& files);
  void enter(const Order& order, const std::vector<Bytes>& files);
  void sendPhotos(const Order& order, const std::vector<Bytes>& files);

  CameraWorld& world_;
  CameraState& state_;
  const Faults& faults_;
  const std::shared_ptr<PhotoStudio> studio_;
  bool busy_ = false;
};

}  // namespace zel::simulator

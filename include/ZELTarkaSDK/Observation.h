#pragma once

#include <memory>
#include <utility>

#include <ZELTarkaSDK/platform/call_gate.h>

namespace zel {

// Keeps an observer registered while it exists. Movable; may outlive the observed object.
// After its destruction the observer neither runs nor is running. Destroyed inside a callback, it does not wait: a call
// in progress on another thread may then still be running, and is the last.
class Observation {
 public:
  Observation() = default;
  explicit Observation(std::shared_ptr<CallGate> gate) : gate_(std::move(gate)) {}
  Observation(Observation&&) noexcept = default;
  Observation& operator=(Observation&& other) noexcept {
    reset();
    gate_ = std::move(other.gate_);
    return *this;
  }
  Observation(const Observation&) = delete;
  Observation& operator=(const Observation&) = delete;
  ~Observation() { reset(); }

  void reset() {
    if (const auto gate = std::exchange(gate_, nullptr)) gate->close();
  }

 private:
  std::shared_ptr<CallGate> gate_;
};

}  // namespace zel

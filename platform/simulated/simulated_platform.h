#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <ZELTarkaSDK/platform/in_process_notification_center.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "platform/simulated/scripted_accessory.h"
#include "platform/simulated/simulated_scheduler.h"

namespace zel::platform {

// A complete platform in virtual time that runs one thing at a time. Nothing really sleeps. The seed determines the
// order of threads, queues and tasks, so that a test is repeatable and can try many orders. A task of the global queue
// may sleep and wait through the clock; others run meanwhile.
// Thread: one. The time starts at 700,000,000 seconds after 1 January 2001.
class SimulatedPlatform {
 public:
  explicit SimulatedPlatform(std::uint64_t seed = 1);
  // Runs stopped threads to their end, as a real platform waits for them; abandons tasks of the global queue.
  ~SimulatedPlatform();
  SimulatedPlatform(const SimulatedPlatform&) = delete;
  SimulatedPlatform& operator=(const SimulatedPlatform&) = delete;

  const Ports& ports();

  void runUntilIdle();
  void advance(double seconds);
  double now() const;
  void setNow(double seconds);

  // Attaches an accessory, detaches one.
  std::shared_ptr<ScriptedAccessory> plug(AccessoryDescription description);
  void unplug(const std::shared_ptr<ScriptedAccessory>& accessory);

  // Threads of that name that have not ended.
  int liveThreads(const std::string& name) const;
  // Tasks of the global queue that have not ended.
  std::size_t liveTasks() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace zel::platform

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "simulator/simulator_options.h"

namespace zel::simulator {

// A simulated camera on the accessory bus: publishes one accessory with a socket, serves its host on a separate thread,
// and removes both at the end.
// Thread: the public operations on any thread.
class CameraSimulator {
 public:
  explicit CameraSimulator(SimulatorOptions options);
  ~CameraSimulator();
  CameraSimulator(const CameraSimulator&) = delete;
  CameraSimulator& operator=(const CameraSimulator&) = delete;

  // Publishes the accessory and starts serving.
  // Errors: false; `error` says what cannot be used.
  bool start(std::string& error);

  // Unplugs finally and waits for the thread.
  void stop();

  // Waits until the simulator has ended by itself, as with `once`, or was stopped.
  void wait();

  // unplug(): removes the file and closes the connection. plug(): attaches again, with a new connection identifier.
  void unplug();
  void plug();

  // No byte is sent for that long.
  void beSilent(double seconds);

  // Triggers an event by a line such as "battery 1 40"; kEventHelp in event_lines.h lists all.
  // Errors: false; `error` then says what is wrong.
  bool tell(const std::string& line, std::string& error);

  // Sends an event message with that code to the connected host, if any.
  void sendEvent(std::uint16_t code, const std::vector<std::uint8_t>& body);

  // The accessory's file; the folder of uploaded files, once started.
  std::string accessoryFile() const;
  std::string storageFolder() const;

  int connections() const;
  // Without those for the marker and for the clock, which a host's link sends by itself.
  int requests() const;

 private:
  struct State;
  void post(std::function<void(State&)> step);
  std::shared_ptr<State> state_;
};

}  // namespace zel::simulator

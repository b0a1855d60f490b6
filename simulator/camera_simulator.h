#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "simulator/accessory_publisher.h"
#include "simulator/faults.h"

namespace zel::simulator {

struct SimulatorOptions {
  std::string accessoriesFolder;  // empty: the bus's default
  Identity identity;
  int resolution = 3;          // preview resolution code, 0 to 15
  int bitrate = 0;             // of the scene's pictures, see PreviewFormat
  int slices = 1;              // of each of them, likewise
  std::string video, audio;    // files instead of the scene and its beeps, see MediaLibrary
  std::string storage;         // the folder of uploaded files; empty: one of its own, which ends with it
  std::uint64_t cardSize = 0;  // bytes; 0: the usual card
  std::uint64_t seed = 1;
  Faults faults;
  std::function<double()> mediaSeconds;  // the media's time, if it shall not be the real one; it is looked at often
  bool once = false;                     // ends after the first connection has ended
  bool verbose = false;                  // every request of the host is told, as "request 0x0004"
  std::function<void(const std::string&)> warn;  // empty: standard error
};

// A simulated camera on the accessory bus: publishes one accessory with a socket, serves its host on a thread of its
// own, and takes both away when it ends.
// Thread: the public operations on any thread.
class CameraSimulator {
 public:
  explicit CameraSimulator(SimulatorOptions options);
  ~CameraSimulator();
  CameraSimulator(const CameraSimulator&) = delete;
  CameraSimulator& operator=(const CameraSimulator&) = delete;

  // Publishes, and serves from now on.
  // Errors: false; `error` names what cannot be used.
  bool start(std::string& error);

  // Unplugs for good and waits for the thread.
  void stop();

  // Waits until the simulator has ended by itself, as with `once`, or was stopped.
  void wait();

  // Detaches: the file goes, the connection is closed. Attaches again, under a new connection identifier.
  void unplug();
  void plug();

  // No byte is sent for that long.
  void beSilent(double seconds);

  // Makes something happen to the camera, by a line as "battery 1 40"; kEventHelp of event_lines.h has them all.
  // Errors: false; `error` then says what is wrong.
  bool tell(const std::string& line, std::string& error);

  // The camera says something unasked: a message of that code. To the host that is connected, else to nobody.
  void sendEvent(std::uint16_t code, const std::vector<std::uint8_t>& body);

  // The accessory's file; the folder of uploaded files, once started.
  std::string accessoryFile() const;
  std::string storageFolder() const;

  int connections() const;
  int requests() const;

 private:
  struct State;
  void post(std::function<void(State&)> step);
  std::shared_ptr<State> state_;
};

}  // namespace zel::simulator

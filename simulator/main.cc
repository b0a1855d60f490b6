// zelcam-sim: a camera for everybody who has none.

#include <pthread.h>
#include <csignal>

#include <ZELTarkaSDK/Version.h>
#include <CLI/CLI.hpp>

#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "simulator/camera_simulator.h"
#include "simulator/event_lines.h"
#include "simulator/numbers.h"

namespace {

using zel::simulator::CameraSimulator;
using zel::simulator::SimulatorOptions;

constexpr int kWrongUsage = 2;

void blockSignals(sigset_t& signals) {
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
}

constexpr char kCommandHelp[] = R"(Commands on standard input:
  plug, unplug               the accessory is attached, detached
  silence SECONDS            no byte is sent for that long
  help                       this list
  quit                       ends the simulator
)";

void beSilent(CameraSimulator& simulator, const std::string& text) {
  double seconds = 0;
  if (zel::simulator::readNumber(text, 0.0, 86400.0, seconds)) return simulator.beSilent(seconds);
  std::cerr << "zelcam-sim: \"" << text << "\" is no number of seconds up to a day\n";
}

// One line of standard input. False when the simulator is to end.
bool obey(CameraSimulator& simulator, const std::string& line) {
  std::string error;
  if (line == "quit") return false;
  if (line == "plug") {
    simulator.plug();
  } else if (line == "unplug") {
    simulator.unplug();
  } else if (line.starts_with("silence ")) {
    beSilent(simulator, line.substr(8));
  } else if (line == "help") {
    std::cerr << kCommandHelp << zel::simulator::kEventHelp;
  } else if (!line.empty() && !simulator.tell(line, error)) {
    std::cerr << "zelcam-sim: " << error << "; \"help\" lists what is known\n";
  }
  return true;
}

int run(const SimulatorOptions& options) {
  sigset_t signals;
  blockSignals(signals);
  CameraSimulator simulator(options);
  std::string error;
  if (!simulator.start(error)) {
    std::cerr << "zelcam-sim: " << error << '\n';
    return 1;
  }
  std::cout << "camera " << options.identity.serial << " (" << options.identity.name
            << ") is attached: " << simulator.accessoryFile() << std::endl;
  // Each of these three ends the program: a signal, "quit", or the simulator itself.
  const pthread_t waiter = pthread_self();
  std::thread([&simulator, waiter] {
    std::string line;
    while (std::getline(std::cin, line)) {
      if (!obey(simulator, line)) pthread_kill(waiter, SIGTERM);
    }
  }).detach();
  std::thread([&simulator, waiter] {
    simulator.wait();
    pthread_kill(waiter, SIGTERM);
  }).detach();
  int signal = 0;
  sigwait(&signals, &signal);
  simulator.stop();
  std::cout.flush();
  std::_Exit(0);  // the thread that reads standard input cannot be woken
}

}  // namespace

int main(int argc, char** argv) {
  SimulatorOptions options;
  std::vector<std::string> faults;
  CLI::App app("A simulated 360-degree camera on the accessory bus.", "zelcam-sim");
  app.footer(std::string(zel::simulator::kFaultHelp) + '\n' + kCommandHelp + '\n' + zel::simulator::kEventHelp);
  app.set_version_flag("--version", std::string("zelcam-sim ") + ZELTarkaSDKVersionString);
  app.add_option("--accessories", options.accessoriesFolder, "folder of the accessory bus");
  app.add_option("--name", options.identity.name, "the accessory's name");
  app.add_option("--serial", options.identity.serial, "its serial number")->check([](const std::string& serial) {
    return serial.empty() ? std::string("a serial number may not be empty") : std::string();
  });
  app.add_option("--firmware", options.identity.firmware, "firmware number")->check(CLI::Range(0, 999999));
  app.add_option("--resolution", options.resolution, "preview resolution code")->check(CLI::Range(0, 15));
  app.add_option("--video", options.video, "H.264 file with start codes that is shown instead of the scene");
  app.add_option("--audio", options.audio, "ADTS AAC file that sounds instead of the beeps");
  app.add_option("--storage", options.storage, "folder of the files that the host sends (a temporary one)");
  app.add_option("--seed", options.seed, "what is random comes out of it");
  app.add_option("--fault", faults, "what goes wrong on purpose, may be repeated")->allow_extra_args(false);
  app.add_flag("--once", options.once, "end after the first connection has ended");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& fault) {
    return app.exit(fault) == 0 ? 0 : kWrongUsage;
  }
  for (const std::string& spec : faults) {
    std::string error;
    if (options.faults.add(spec, error)) continue;
    std::cerr << "zelcam-sim: " << error << '\n' << zel::simulator::kFaultHelp;
    return kWrongUsage;
  }
  return run(options);
}

// zelcam-sim: the simulated camera.

#include <pthread.h>
#include <csignal>

#include <iostream>
#include <string>
#include <thread>

#include "simulator/camera_simulator.h"
#include "simulator/command_line.h"
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
  std::signal(SIGTTIN, SIG_IGN);  // in the background of a terminal it runs without commands instead of being stopped
}

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
    std::cerr << zel::simulator::kCommandHelp << zel::simulator::kEventHelp;
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
  std::_Exit(0);  // the thread that reads standard input cannot be interrupted
}

}  // namespace

int main(int argc, char** argv) {
  zel::simulator::CommandLine line;
  try {
    line.parser().parse(argc, argv);
  } catch (const CLI::ParseError& fault) {
    return line.parser().exit(fault) == 0 ? 0 : kWrongUsage;
  }
  return run(line.options());
}

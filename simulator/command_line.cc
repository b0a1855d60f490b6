#include "simulator/command_line.h"

#include <ZELTarkaSDK/Version.h>

#include <sstream>
#include <string>
#include <vector>

#include "simulator/event_lines.h"
#include "tools/manual/describe_option.h"
#include "tools/manual/wrong_usage.h"

namespace zel::simulator {

const char kCommandHelp[] = R"(Commands on standard input:
  plug, unplug               the accessory is attached, detached
  silence SECONDS            no byte is sent for that long
  help                       this list
  quit                       ends the simulator
)";

namespace {

// Values for shell completion: the faults' names, which are the first words in their list, and the preview's codes.
manual::Words usualWords() {
  manual::Words words;
  for (int code = 0; code <= 15; ++code) words["CODE"].push_back(std::to_string(code));
  std::istringstream lines(kFaultHelp);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("  ")) words["SPEC"].push_back(line.substr(2, line.find_first_of("[= ", 2) - 2));
  }
  return words;
}

std::string complaintOfSerial(const std::string& serial) {
  return serial.empty() ? "a serial number may not be empty" : "";
}

std::string complaintOfFault(const std::string& spec) {
  Faults faults;
  std::string error;
  return faults.add(spec, error) ? "" : error + '\n' + kFaultHelp;
}

}  // namespace

CommandLine::CommandLine() {
  app_.footer("Example: zelcam-sim --serial E1A0001 --fault split --fault stall=5/20\n\n" + std::string(kFaultHelp) +
              '\n' + kCommandHelp + '\n' + kEventHelp);
  app_.set_version_flag("--version", std::string("zelcam-sim ") + ZELTarkaSDKVersionString);
  const auto option = [this](const char* name, auto& value, const char* placeholder, const char* help) {
    return app_.add_option(name, value, help)->type_name(placeholder);
  };
  option("--accessories", options_.accessoriesFolder, "DIR", "folder of the accessory bus (default: $ZEL_ACCESSORIES)");
  option("--name", options_.identity.name, "NAME", "the accessory's name");
  option("--serial", options_.identity.serial, "TEXT", "its serial number")->check(complaintOfSerial);
  option("--firmware", options_.identity.firmware, "N", "firmware number")->check(CLI::Range(0, 999999));
  option("--resolution", options_.resolution, "CODE", "preview resolution code")->check(CLI::Range(0, 15));
  option("--bitrate", options_.bitrate, "BPS", "add sensor noise to the scene, at that many bits a second")
      ->check(CLI::Range(100'000, 200'000'000));
  option("--slices", options_.slices, "N", "slices in each picture of the scene")->check(CLI::Range(1, 40));
  option("--video", options_.video, "FILE.h264", "H.264 file with start codes, instead of the scene");
  option("--audio", options_.audio, "FILE.aac", "ADTS AAC file, instead of the beeps");
  option("--storage", options_.storage, "DIR", "folder of the files that the host sends; default: a temporary one");
  option("--seed", options_.seed, "N", "seed of everything random");
  const auto addFault = [this](const std::string& spec) {
    std::string error;
    options_.faults.add(spec, error);
  };
  app_.add_option_function<std::vector<std::string>>(
          "--fault",
          [addFault](const auto& specs) {
            for (const auto& spec : specs) addFault(spec);
          },
          "inject a fault")
      ->type_name("SPEC")
      ->allow_extra_args(false)
      ->check(complaintOfFault);
  app_.add_flag("--once", options_.once, "end after the first connection has ended");
  app_.add_flag("--verbose", options_.verbose, "print every request of the host on standard error");
  manual::addDescribeOption(app_, usualWords());
  manual::explainWrongUsage(app_);
}

}  // namespace zel::simulator

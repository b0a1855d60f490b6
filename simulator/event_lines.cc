#include "simulator/event_lines.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <sstream>
#include <vector>

#include "simulator/numbers.h"

namespace zel::simulator {

const char kEventHelp[] = R"(Events:
  battery TYPE LEVEL         powered by TYPE (1 is the battery), LEVEL percent
  battery-low N              the warning
  shutdown [N]               the battery is empty
  card N                     0 ready, 2 full, every other number a card that cannot be used
  key N                      a key is pressed
  offset                     the lens offset has changed
  update-done N              the firmware update has ended; 0 is a failure
  split                      the recording goes on in another file
  card-full                  the card is full, which ends a recording
  time-out                   the recording's time is over
  shutter N                  the shutter's state
  delete A B C               progress of a deletion
  gyro                       motion data
)";

namespace {

using Numbers = std::vector<std::uint32_t>;

struct Line {
  const char* name;
  std::size_t least, most;  // numbers after the name
  std::uint32_t largest;    // of them
  void (*happen)(SimulatedCamera&, const Numbers&);
};

std::uint8_t byte(const Numbers& numbers, std::size_t at) { return static_cast<std::uint8_t>(numbers[at]); }

template <EventCode code>
void tellByte(SimulatedCamera& camera, const Numbers& n) {
  camera.tellHost(message(code, n.empty() ? Bytes() : Bytes{byte(n, 0)}));
}

void deletion(SimulatedCamera& camera, const Numbers& n) {
  Bytes body;
  for (const std::uint32_t number : n) put(body, number);
  camera.tellHost(message(kDeleteProgressEvent, body));
}

void timeOut(SimulatedCamera& camera, const Numbers&) {
  camera.recorder().settle();
  camera.recorder().endForTime();
}

constexpr Line kLines[] = {
    {"battery", 2, 2, 255, [](auto& camera, const auto& n) { camera.setBattery(byte(n, 0), byte(n, 1)); }},
    {"battery-low", 1, 1, 255, tellByte<kBatteryLowEvent>},
    {"shutdown", 0, 1, 255, tellByte<kShutDownEvent>},
    {"card", 1, 1, 255, [](auto& camera, const auto& n) { camera.setCard(byte(n, 0)); }},
    {"key", 1, 1, 255, tellByte<kKeyEvent>},
    {"offset", 0, 0, 0, [](auto& camera, const auto&) { camera.changeOffset(); }},
    {"update-done", 1, 1, 255, tellByte<kUpdateDoneEvent>},
    {"split", 0, 0, 0, [](auto& camera, const auto&) { camera.recorder().split(); }},
    {"card-full", 0, 0, 0, [](auto& camera, const auto&) { camera.fillCard(); }},
    {"time-out", 0, 0, 0, timeOut},
    {"shutter", 1, 1, 255, tellByte<kShutterStateEvent>},
    {"delete", 3, 3, UINT32_MAX, deletion},
    {"gyro", 0, 0, 0, [](auto& camera, const auto&) { camera.moveGyro(); }},
};

bool readNumbers(std::istringstream& words, const Line& line, Numbers& numbers) {
  for (std::string word; words >> word;) {
    std::uint32_t number = 0;
    if (numbers.size() == line.most || !readNumber<std::uint32_t>(word, 0, line.largest, number)) return false;
    numbers.push_back(number);
  }
  return numbers.size() >= line.least;
}

}  // namespace

CameraHappening readEventLine(const std::string& text, std::string& error) {
  std::istringstream words(text);
  std::string name;
  words >> name;
  const auto line = std::ranges::find(kLines, name, [](const Line& one) { return std::string(one.name); });
  if (line == std::end(kLines)) {
    error = "unknown command \"" + name + "\"";
    return nullptr;
  }
  Numbers numbers;
  if (!readNumbers(words, *line, numbers)) {
    error = "\"" + text + "\" has too few or too many numbers, or one that is malformed or out of range";
    return nullptr;
  }
  return [happen = line->happen, numbers](SimulatedCamera& camera) { happen(camera, numbers); };
}

}  // namespace zel::simulator

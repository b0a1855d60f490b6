#include "apps/zelcam/command_line/sensors.h"

#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/ZELMediaOrientation.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

#include "gateway/json/number_text.h"
#include "gateway/media/file.h"

namespace zel::app {
namespace {

using gateway::numberIn;
using gateway::readFile;

// The rest of a frame after its header, the message's code and all records of a capture.
constexpr std::uint64_t kMostExtra = std::numeric_limits<std::uint32_t>::max() - (4 + 2 + 2) - sizeof(ZELGpsData) -
                                     sizeof(ZELGyroData) - sizeof(ZELOrientationData) - sizeof(aeb_info);

// The comma-separated numbers of an option; zeros if not given.
template <std::size_t count>
std::optional<std::array<double, count>> numbersOf(const Values& values, std::string_view option, std::string& error) {
  std::array<double, count> numbers{};
  if (!values.has(option)) return numbers;
  const std::string text = values.text(option);
  std::string_view left = text;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t end = i + 1 < count ? left.find(',') : left.size();
    const auto number = numberIn<double>(left.substr(0, end));
    if (!number || end == std::string_view::npos) {
      error = fmt::format("{} takes {} numbers with commas between them, not \"{}\"", option, count, text);
      return std::nullopt;
    }
    numbers[i] = *number;
    left.remove_prefix(std::min(left.size(), end + 1));
  }
  return numbers;
}

}  // namespace

std::vector<Option> sensorOptionsAnd(std::vector<Option> others) {
  std::vector<Option> options = {
      {"--gps", "LAT,LON,ALT", "where it is taken: degrees, degrees, metres"},
      {"--gyro", "AX,AY,AZ,GX,GY,GZ", "acceleration and rotation along the three axes"},
      {"--orientation", "X,Y,Z,W", "orientation as a quaternion"},
      {"--extra", "FILE", "file whose bytes go with it"},
  };
  options.insert(options.end(), std::move_iterator(others.begin()), std::move_iterator(others.end()));
  return options;
}

std::optional<Sensors> sensorsIn(const Values& values, std::string& error) {
  Sensors sensors;
  const auto gps = numbersOf<3>(values, "--gps", error);
  const auto gyro = numbersOf<6>(values, "--gyro", error);
  const auto orientation = numbersOf<4>(values, "--orientation", error);
  if (!gps || !gyro || !orientation) return std::nullopt;
  sensors.gps = {(*gps)[0], (*gps)[1], (*gps)[2]};
  const auto axis = [&gyro](std::size_t i) { return static_cast<float>((*gyro)[i]); };
  sensors.gyro = {axis(0), axis(1), axis(2), axis(3), axis(4), axis(5)};
  const auto& o = *orientation;
  sensors.orientation = ZELMediaOrientation::initWithX(o[0], o[1], o[2], o[3])->getOrientationData();
  if (!values.has("--extra")) return sensors;
  sensors.extra = readFile(values.text("--extra"), error, kMostExtra);
  return sensors.extra ? std::optional(std::move(sensors)) : std::nullopt;
}

}  // namespace zel::app

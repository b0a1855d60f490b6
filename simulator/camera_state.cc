#include "simulator/camera_state.h"

#include <algorithm>
#include <cstdio>

namespace zel::simulator {
namespace {

// The same serial number gives the same identifier: 48 bits of its FNV-1a hash under fixed leading groups.
std::string uuidOf(const std::string& serial) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char letter : serial) hash = (hash ^ static_cast<std::uint8_t>(letter)) * 0x100000001B3;
  char text[40];
  std::snprintf(text, sizeof text, "5a454c00-0000-4000-8000-%012llx",
                static_cast<unsigned long long>(hash & 0xFFFFFFFFFFFF));
  return text;
}

}  // namespace

CameraState::CameraState(const CameraWorld& world, const CameraStart& start)
    : firmware(start.firmware),
      serial(start.serial),
      uuid(uuidOf(start.serial)),
      clock(world, start.now),
      card(start.cardSize) {
  modes.preview = modes.recording = static_cast<std::uint8_t>(start.resolution);
}

double CameraState::exposureBias() const {
  const auto bias = static_cast<std::int16_t>(numberAt<std::uint16_t>(settings.value(kExposureBias), 0));
  return std::clamp<int>(bias, -12, 12) / 3.0;
}

void CameraState::addFile(const FileEntry& file, const Bytes& sensorTriple) {
  files.add(file.name, fileRecord(file.size, lenses.offset({0, modes.preview}), sensorTriple));
}

}  // namespace zel::simulator

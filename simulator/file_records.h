#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>

#include "simulator/wire.h"

namespace zel::simulator {

inline constexpr std::size_t kSensorTriple = 24 + 24 + 16;  // GPS, gyro, orientation
inline constexpr std::size_t kFileRecord = 192;

// | 0   | u8 x 8  | zeros            |
// | 8   | u64     | size of the file |
// | 16  | 80      | lens offset      |
// | 96  | 64      | sensor triple    |
// | 160 | u8 x 32 | zeros            |
Bytes fileRecord(std::uint64_t size, const Bytes& lensOffset, const Bytes& sensorTriple);

// The records of the last thousand files of the camera.
class FileRecords {
 public:
  void add(const std::string& name, Bytes record);
  std::optional<Bytes> of(const std::string& name) const;

 private:
  std::deque<std::pair<std::string, Bytes>> records_;
};

}  // namespace zel::simulator

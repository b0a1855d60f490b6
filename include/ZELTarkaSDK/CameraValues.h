#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <ZELTarkaSDK/platform/export.h>

// What requests give; made from bindings/requests.toml by tools/bindings/generate.py.

namespace zel {

// The battery, and what the camera runs on.
struct ZEL_EXPORT Battery {
  std::uint8_t powerType = 0;  // 1 and 2 are what the camera calls so
  std::uint8_t level = 0;      // in the camera's scale

  bool operator==(const Battery&) const = default;
};

// The memory card.
struct ZEL_EXPORT Card {
  std::uint8_t state = 0;  // the camera's code
  std::uint64_t capacityBytes = 0;
  std::uint64_t freeBytes = 0;

  bool operator==(const Card&) const = default;
};

// When the camera was first used.
struct ZEL_EXPORT ActivationTime {
  std::int32_t seconds = 0;  // since 1970
  std::int32_t timeZoneMinutesWest = 0;

  bool operator==(const ActivationTime&) const = default;
};

// What a photo or a recording was stored as on the card.
struct ZEL_EXPORT StoredFile {
  std::uint32_t time = 0;  // the camera's
  std::uint64_t sizeBytes = 0;
  std::optional<std::string> name = {};

  bool operator==(const StoredFile&) const = default;
};

}  // namespace zel

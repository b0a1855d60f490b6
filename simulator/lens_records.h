#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>

#include "simulator/wire.h"

namespace zel::simulator {

inline constexpr std::size_t kOffsetRecord = 80, kOriginRecord = 28;

// The lens offsets that the host can set, by the request's two leading bytes: a kind and a type. Factory values until
// they are set. Setting one does not change the pictures.
class LensRecords {
 public:
  using Key = std::pair<std::uint8_t, std::uint8_t>;

  LensRecords();

  Bytes offset(Key key) const;
  Bytes origin(Key key) const;

  // Errors: false for a record of another size, and for one of more lenses than the two that a record can hold.
  bool setOffset(Key key, Bytes record);
  bool setOrigin(Key key, Bytes record);

 private:
  const Bytes factoryOffset_;
  const Bytes factoryOrigin_;
  std::map<Key, Bytes> offsets_;
  std::map<Key, Bytes> origins_;
};

}  // namespace zel::simulator

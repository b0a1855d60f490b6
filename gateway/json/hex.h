#pragma once

#include <ZELTarkaSDK/ZELData.h>

#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zel::gateway {

// Bytes as lower-case hexadecimal digits, two each.
std::string hexOf(std::span<const std::uint8_t> bytes);

// The bytes of such digits, of either case; nothing for any other text.
std::optional<std::vector<std::uint8_t>> bytesIn(std::string_view hex);

// The same for a record of the protocol.
template <class Record>
std::string recordHex(const Record& record) {
  return hexOf({reinterpret_cast<const std::uint8_t*>(&record), sizeof(Record)});
}
template <class Record>
std::optional<Record> recordIn(std::string_view hex) {
  const auto bytes = bytesIn(hex);
  if (!bytes || bytes->size() != sizeof(Record)) return std::nullopt;
  Record record;
  std::memcpy(&record, bytes->data(), sizeof(Record));
  return record;
}

}  // namespace zel::gateway

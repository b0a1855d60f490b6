#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include <ZELTarkaSDK/Export.h>
#include <ZELTarkaSDK/ZELData.h>

// The fields of a request or a reply under their fixed text keys ("ucharValue", "NSData", ...).
// A key that is missing or holds another type reads as absent.
class ZEL_EXPORT ZELMessageFields {
 public:
  using Value = std::variant<std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t, std::int64_t,
                             std::uint64_t, std::string, ZELData>;

  ZELMessageFields() = default;
  ZELMessageFields(std::initializer_list<std::pair<const std::string, Value>> fields) : fields_(fields) {}

  void set(std::string_view key, Value value) { fields_.insert_or_assign(std::string(key), std::move(value)); }

  template <class T>
  std::optional<T> get(std::string_view key) const {
    const auto found = fields_.find(key);
    if (found == fields_.end()) return std::nullopt;
    const T* value = std::get_if<T>(&found->second);
    return value != nullptr ? std::optional<T>(*value) : std::nullopt;
  }

  bool operator==(const ZELMessageFields&) const = default;

 private:
  std::map<std::string, Value, std::less<>> fields_;
};

#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/ZELError.h>
#include <ZELTarkaSDK/platform/export.h>

// The fields of a request, a reply or an event under their fixed text keys ("ucharValue", "NSData", ...).
// A key that is missing or holds another type reads as absent.
// Thread: none of its own; guard it as any value.
class ZEL_EXPORT ZELMessageFields {
 public:
  using Value = std::variant<std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t, std::int64_t,
                             std::uint64_t, std::string, ZELData, ZELError, ZELGpsData, ZELGyroData, ZELOrientationData,
                             aeb_info, ZELIPMEParam, ZELIPAEMMWeight, calib_wb_gain, calib_vignette_luma,
                             calib_vignette_gain, timelapse_info, ZELOriginOffset, ZELVideoMnd>;
  using Fields = std::map<std::string, Value, std::less<>>;

  ZELMessageFields() = default;
  ZELMessageFields(std::initializer_list<std::pair<const std::string, Value>> fields) : fields_(fields) {}

  void set(std::string_view key, Value value) { fields_.insert_or_assign(std::string(key), std::move(value)); }

  template <class T>
  std::optional<T> get(std::string_view key) const {
    const T* value = find<T>(key);
    return value != nullptr ? std::optional<T>(*value) : std::nullopt;
  }

  // Null where get() is empty. The pointer is valid until the field is set again.
  template <class T>
  const T* find(std::string_view key) const {
    const auto found = fields_.find(key);
    return found != fields_.end() ? std::get_if<T>(&found->second) : nullptr;
  }

  // All of them, in the order of their keys.
  const Fields& all() const { return fields_; }

  bool operator==(const ZELMessageFields&) const = default;

 private:
  Fields fields_;
};

#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <tuple>

#include <ZELTarkaSDK/ZELMediaGps.h>
#include <ZELTarkaSDK/ZELMediaGyro.h>
#include <ZELTarkaSDK/ZELMediaOrientation.h>
#include <ZELTarkaSDK/ZELMessageFields.h>

namespace zel {

template <class T>
void setField(ZELMessageFields& fields, std::string_view key, const T& value) {
  fields.set(key, value);
}
// What is absent is no field.
template <class T>
void setField(ZELMessageFields& fields, std::string_view key, const std::optional<T>& value) {
  if (value) fields.set(key, *value);
}

inline void setFields(ZELMessageFields&) {}
template <class T, class... Rest>
void setFields(ZELMessageFields& fields, std::string_view key, const T& value, const Rest&... rest) {
  setField(fields, key, value);
  setFields(fields, rest...);
}

// A request's fields, made when the request is: that takes memory.
class RequestFields {
 public:
  // Errors: std::bad_alloc.
  virtual ZELMessageFields made() const = 0;

 protected:
  ~RequestFields() = default;
};

template <class... KeysAndValues>
class LazyRequestFields final : public RequestFields {
 public:
  explicit LazyRequestFields(const KeysAndValues&... keysAndValues) : keysAndValues_(keysAndValues...) {}

  ZELMessageFields made() const override {
    ZELMessageFields fields;
    std::apply([&fields](const KeysAndValues&... all) { setFields(fields, all...); }, keysAndValues_);
    return fields;
  }

 private:
  const std::tuple<const KeysAndValues&...> keysAndValues_;
};

// The fields of key, value, key, value, ..., which must live until they are made.
template <class... KeysAndValues>
auto fieldsOf(const KeysAndValues&... keysAndValues) {
  return LazyRequestFields<KeysAndValues...>(keysAndValues...);
}

// The camera's record of a media library's object; all zero without one.
inline ZELGpsData recordOf(const std::shared_ptr<const ZELMediaGps>& gps) {
  return gps ? gps->getGpsData() : ZELGpsData{};
}
inline ZELGyroData recordOf(const std::shared_ptr<const ZELMediaGyro>& gyro) {
  return gyro ? gyro->getGyroData() : ZELGyroData{};
}
inline ZELOrientationData recordOf(const std::shared_ptr<const ZELMediaOrientation>& orientation) {
  return orientation ? orientation->getOrientationData() : ZELOrientationData{};
}

}  // namespace zel

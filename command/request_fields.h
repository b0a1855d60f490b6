#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <utility>

#include <ZELTarkaSDK/ZELMediaGps.h>
#include <ZELTarkaSDK/ZELMediaGyro.h>
#include <ZELTarkaSDK/ZELMediaOrientation.h>
#include <ZELTarkaSDK/ZELMessageFields.h>

#include "protocol/catalogue.h"

namespace zel {

template <class T>
void setField(ZELMessageFields& fields, const Field& field, const T& value) {
  fields.set(field.key, value);
}
// An absent value gives no field.
template <class T>
void setField(ZELMessageFields& fields, const Field& field, const std::optional<T>& value) {
  if (value) fields.set(field.key, *value);
}

template <class T>
inline constexpr std::size_t kArgumentType = kTypeNumber<T>;
template <class T>
inline constexpr std::size_t kArgumentType<std::optional<T>> = kTypeNumber<T>;

// A request's fields: an argument for each field of the row's body, of its type.
template <RowName row, class... Arguments>
ZELMessageFields fieldsOf(const Arguments&... arguments) {
  constexpr const FieldList& kFields = kRow<row>.body;
  static_assert(sizeof...(Arguments) == kFields.count(), "an argument for each field of the row's body");
  ZELMessageFields fields;
  [&]<std::size_t... index>(std::index_sequence<index...>) {
    static_assert(((kArgumentType<Arguments> == kFields[index].type) && ...), "each argument is of its field's type");
    (setField(fields, kFields[index], arguments), ...);
  }
  (std::index_sequence_for<Arguments...>());
  return fields;
}

// The camera's record of a media library's object; all zero for null.
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

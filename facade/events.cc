#include "facade/events.h"

#include <ZELTarkaSDK/ZELError.h>
#include <ZELTarkaSDK/ZELMessageKeys.h>

#include <initializer_list>
#include <string>
#include <string_view>

namespace zel {
namespace {

std::int64_t numberOf(const ZELMessageFields& fields, std::initializer_list<std::string_view> keys) {
  for (const std::string_view name : keys) {
    if (const auto* value = fields.find<std::int32_t>(name)) return *value;
    if (const auto* value = fields.find<std::uint32_t>(name)) return *value;
    if (const auto* value = fields.find<std::uint64_t>(name)) return static_cast<std::int64_t>(*value);
  }
  return 0;
}

}  // namespace

Event eventOf(std::int64_t type, const std::optional<ZELMessageFields>& value) {
  Event event{static_cast<ZELCameraEvent>(type)};
  if (!value) return event;
  event.numbers = {numberOf(*value, {key::intValue, key::uintValue}),
                   numberOf(*value, {key::intValue2, key::uintValue2, key::uint64Value}),
                   numberOf(*value, {key::uintValue3})};
  event.text = value->get<std::string>(key::nsString);
  event.failed = value->find<ZELError>(key::nsError) != nullptr;
  return event;
}

}  // namespace zel

#include "protocol/camera_events.h"

#include <string>
#include <utility>

#include "base/text.h"

namespace zel {

std::optional<ZELMessageFields> decodeEvent(const CameraEvent& event, ByteView payload) {
  if (event.custom != nullptr) return event.custom(payload);
  ByteReader reader(payload);
  ZELMessageFields fields;
  for (const Field& field : event.fields) field.read(reader, fields, field.key);
  return fields;
}

std::optional<ZELMessageFields> decodeUpdateDone(ByteView payload) {
  ZELMessageFields fields;
  if (ByteReader(payload).read<U8>() == 0) fields.set(key::nsError, zelOSStatusError(kZELErrorRefused));
  return fields;
}

// Payload. In a short payload an incomplete number is left out, and the name begins in its place:
//
//   0           4           12
//   +-----------+-----------+------------------------
//   | u32       | u64       | name, zero-terminated
//   +-----------+-----------+------------------------
std::optional<ZELMessageFields> decodeRecordEvent(ByteView payload) {
  ByteReader reader(payload);
  ZELMessageFields fields;
  fields.set(key::uintValue, payload.size() >= 4 ? std::uint32_t{reader.read<U32>()} : 0u);
  fields.set(key::uint64Value, payload.size() >= 12 ? std::uint64_t{reader.read<U64>()} : std::uint64_t{0});
  if (!reader.rest().empty()) {
    if (auto name = zeroTerminatedUtf8(reader.rest())) fields.set(key::nsString, std::move(*name));
  }
  return fields;
}

std::optional<ZELMessageFields> decodeOffsetEvent(ByteView payload) {
  ByteReader reader(payload);
  ZELMessageFields fields;
  fields.set(key::intValue, std::int32_t{reader.read<U8>()});
  const bool whole = reader.rest().size() >= sizeof(ZELMediaOffset);
  fields.set(key::nsString, whole ? getOffsetFromZELMediaOffset(reader.read<ZELMediaOffset>()) : std::string());
  return fields;
}

std::optional<ZELMessageFields> decodeNothing(ByteView) { return std::nullopt; }

}  // namespace zel

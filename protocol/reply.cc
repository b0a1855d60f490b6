#include "protocol/reply.h"

#include <string>
#include <utility>

#include <ZELTarkaSDK/ZELMessageKeys.h>

#include "base/text.h"

namespace zel {

Decoded decodeReply(const Reply& reply, ByteView body) {
  if (reply.decode != nullptr) return reply.decode(body);
  const std::size_t flagSize = reply.form == Reply::Form::flag ? 1 : 0;
  if (body.size() < flagSize + reply.fields.size()) return Decoded::refusal();
  if (flagSize != 0 && body[0] == 0) return Decoded::refusal();
  if (reply.fields.empty()) return Decoded::success();
  ByteReader reader(body.subspan(flagSize));
  ZELMessageFields fields;
  for (const Field& field : reply.fields) field.read(reader, fields, field.key);
  return Decoded::success(std::move(fields));
}

// Body:
//
//   0           4           12
//   +-----------+-----------+------------------------
//   | file time | file size | name, zero-terminated
//   +-----------+-----------+------------------------
Decoded decodeCaptureResult(ByteView body) {
  ByteReader reader(body);
  const std::uint32_t time = reader.read<U32>();
  const std::uint64_t size = reader.read<U64>();
  if (!reader.ok() || reader.rest().empty()) return Decoded::refusal();
  auto name = zeroTerminatedUtf8(reader.rest());
  if (!name) return Decoded::refusal();
  return Decoded::success(ZELMessageFields{{std::string(key::fileTime), time},
                                           {std::string(key::fileSize), size},
                                           {std::string(key::fileName), std::move(*name)}});
}

Decoded decodeTextFileResult(ByteView body) {
  if (body.empty()) return Decoded::refusal();
  ByteReader reader(body);
  const bool agreed = reader.read<U8>() != 0;
  ZELMessageFields fields;
  fields.set(key::intValue, std::int32_t{reader.read<U8>()});
  // Deliberate: the camera's code says why it refused, so it accompanies the error.
  if (!agreed) fields.set(key::nsError, zelOSStatusError(kZELErrorRefused));
  return Decoded::success(std::move(fields));
}

Decoded decodeAnything(ByteView) { return Decoded::success(); }

}  // namespace zel

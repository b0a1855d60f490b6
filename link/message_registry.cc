#include "link/message_registry.h"

#include <optional>

#include "protocol/frame.h"

namespace zel {

ZELData packedFrame(const CameraMsgPacket& packet, const ZELMessageFields& fields) {
  std::optional<ZELData> body;
  if (packet.packetBlock()) body = packet.packetBlock()(packet.UCDMsgType(), fields, packet.sourceObj());
  const auto code = static_cast<std::uint16_t>(packet.UCDMsgType());
  return ZELData(messageFrame(code, body ? body->bytes() : ByteView()));
}

}  // namespace zel

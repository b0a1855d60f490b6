#include "link/frame_statistics.h"

namespace zel {

void FrameStatistics::addFrame(std::uint16_t type, std::uint64_t length) {
  const std::size_t index = isKnownFrameType(type) ? type : 0;
  frames[index].add(1);
  bytes[index].add(length);
}

void FrameStatistics::copyTo(LinkStatistics& into) const {
  for (std::size_t type = 0; type < kFrameTypeCount; ++type) {
    into.frames[type] = frames[type].value();
    into.bytes[type] = bytes[type].value();
  }
  into.dropped.unknownType = dropped.unknownType.value();
  into.dropped.noConsumer = dropped.noConsumer.value();
  into.dropped.unregisteredCode = dropped.unregisteredCode.value();
  into.dropped.shortMessage = dropped.shortMessage.value();
  into.dropped.unregisteredData = dropped.unregisteredData.value();
  into.dropped.shortTimestamp = dropped.shortTimestamp.value();
  into.dropped.timestampOldFirmware = dropped.timestampOldFirmware.value();
  into.dropped.noMemory = dropped.noMemory.value();
  into.bytesReceived = bytesReceived.value();
  into.bytesDiscarded = bytesDiscarded.value();
  into.markersFound = markersFound.value();
  into.positionsLost = positionsLost.value();
}

}  // namespace zel

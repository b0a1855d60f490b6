#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include <ZELTarkaSDK/LinkStatistics.h>

namespace zel {

// A count with one writer and any number of readers.
class Counter {
 public:
  // Only one thread parses at a time, so a plain store suffices. It is cheaper than an atomic addition.
  void add(std::uint64_t count) { value_.store(value() + count, std::memory_order_relaxed); }
  std::uint64_t value() const { return value_.load(std::memory_order_relaxed); }

 private:
  std::atomic<std::uint64_t> value_ = 0;
};

// Counters of the de-multiplexer.
// Thread: written on the session thread, read on any.
struct FrameStatistics {
  struct Dropped {
    Counter unknownType, noConsumer, unregisteredCode, shortMessage, unregisteredData, shortTimestamp,
        timestampOldFirmware, noMemory;
  };

  std::array<Counter, kFrameTypeCount> frames;
  std::array<Counter, kFrameTypeCount> bytes;
  Dropped dropped;
  Counter bytesReceived, bytesDiscarded, markersFound, positionsLost;

  // Counts a whole frame of that data type.
  void addFrame(std::uint16_t type, std::uint64_t length);

  // Sets these counters in `into`, and no others.
  void copyTo(LinkStatistics& into) const;
};

// Whether the data type has a consumer.
constexpr bool isKnownFrameType(std::uint16_t type) {
  switch (FrameType{type}) {
    case FrameType::previewVideo:
    case FrameType::previewAudio:
    case FrameType::photo:
    case FrameType::message:
    case FrameType::registered:
    case FrameType::timestamp:
    case FrameType::file:
      return true;
    case FrameType::other:
      break;
  }
  return false;
}

}  // namespace zel

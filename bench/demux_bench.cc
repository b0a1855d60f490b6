// How fast the de-multiplexer walks a stream, beside what a machine can do at best.
//
// The stream mixes 1,400-byte frames, 20 to 60 KB video frames and small messages; it is fed in reads of 512 B, 16 KiB
// and 2 MiB, once from 1 MiB that stays in cache and once from 64 MiB of memory.

#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <ZELTarkaSDK/platform/clock.h>

#include "base/wire.h"
#include "bench/ratio_report.h"
#include "link/camera_data_parser.h"
#include "link/frame_cutter.h"
#include "protocol/frame.h"

namespace zel::bench {
namespace {

constexpr std::int64_t kHot = 1 << 20;
constexpr std::int64_t kCold = 64 << 20;

class CountingPlayer final : public PreviewConsumer {
 public:
  void appendVideoBytes(ByteView bytes) override { seen += bytes.size(); }
  void appendAudioBytes(ByteView bytes) override { seen += bytes.size(); }
  void setNextVideoTimestamp(std::int64_t time) override { seen += static_cast<std::uint64_t>(time); }
  void setNextAudioTimestamp(std::int64_t time) override { seen += static_cast<std::uint64_t>(time); }
  void setImageWidth(std::int32_t) override {}
  void setImageHeight(std::int32_t) override {}
  void setFps(std::int32_t) override {}
  void resetPlayer() override {}
  std::uint64_t seen = 0;
};

struct Stream {
  Bytes bytes;
  std::int64_t frames = 0;
};

void addFrame(Stream& stream, FrameType type, std::size_t payload) {
  appendLittleEndian(stream.bytes, static_cast<std::uint32_t>(kFrameHeader + payload));
  appendLittleEndian(stream.bytes, static_cast<std::uint16_t>(type));
  stream.bytes.resize(stream.bytes.size() + payload, 0x5A);
  ++stream.frames;
}

Stream makeStream(std::int64_t size) {
  std::mt19937 random(1);
  Stream stream;
  while (stream.bytes.size() < static_cast<std::size_t>(size)) {
    const auto kind = random() % 100;
    if (kind < 8) {
      addFrame(stream, FrameType::previewVideo, 20000 + random() % 40000);
    } else if (kind < 20) {
      addFrame(stream, FrameType::message, 2 + random() % 30);
    } else {
      addFrame(stream, kind < 60 ? FrameType::previewAudio : FrameType::photo, 1400 - kFrameHeader);
    }
  }
  return stream;
}

const Stream& streamOf(std::int64_t size) {
  static const Stream hot = makeStream(kHot);
  static const Stream cold = makeStream(kCold);
  return size == kHot ? hot : cold;
}

template <class Chunk>
void forEachRead(const Bytes& bytes, std::size_t read, Chunk&& chunk) {
  for (std::size_t at = 0; at < bytes.size(); at += read) {
    chunk(bytes.data() + at, std::min(read, bytes.size() - at));
  }
}

void report(benchmark::State& state, const Stream& stream) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(stream.bytes.size()));
  state.counters["ns/frame"] = benchmark::Counter(static_cast<double>(state.iterations() * stream.frames) / 1e9,
                                                  benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// The limit: each chunk copied into one small buffer, nothing looked at.
void chunkCopy(benchmark::State& state) {
  const Stream& stream = streamOf(state.range(0));
  const auto read = static_cast<std::size_t>(state.range(1));
  const auto into = std::make_unique<std::uint8_t[]>(read);
  for (auto _ : state) {
    forEachRead(stream.bytes, read, [&](const std::uint8_t* bytes, std::size_t length) {
      std::memcpy(into.get(), bytes, length);
      benchmark::ClobberMemory();
    });
  }
  report(state, stream);
}

// The limit for frames that are longer than a read: they must stand somewhere as a whole, so that the chunks are copied
// one behind the other into as much memory as the largest frame takes.
void gatheringCopy(benchmark::State& state) {
  constexpr std::size_t kRoom = 64 * 1024;
  const Stream& stream = streamOf(state.range(0));
  const auto read = static_cast<std::size_t>(state.range(1));
  const auto into = std::make_unique<std::uint8_t[]>(kRoom);
  std::size_t at = 0;
  for (auto _ : state) {
    forEachRead(stream.bytes, read, [&](const std::uint8_t* bytes, std::size_t length) {
      if (at + length > kRoom) at = 0;
      std::memcpy(into.get() + at, bytes, length);
      at += length;
      benchmark::ClobberMemory();
    });
  }
  report(state, stream);
}

// A minimal length-prefix walker that copies once: a vector, erased once a read.
void lengthWalker(benchmark::State& state) {
  const Stream& stream = streamOf(state.range(0));
  const auto read = static_cast<std::size_t>(state.range(1));
  Bytes held;
  std::uint64_t seen = 0;
  for (auto _ : state) {
    forEachRead(stream.bytes, read, [&](const std::uint8_t* bytes, std::size_t length) {
      held.insert(held.end(), bytes, bytes + length);
      std::size_t at = 0;
      while (held.size() - at >= kFrameHeader) {
        std::uint32_t frame = 0;
        std::memcpy(&frame, held.data() + at, sizeof(frame));
        if (held.size() - at < frame) break;
        seen += frame - kFrameHeader;
        at += frame;
      }
      if (at != 0) held.erase(held.begin(), held.begin() + static_cast<std::ptrdiff_t>(at));
    });
    benchmark::DoNotOptimize(seen);
  }
  report(state, stream);
}

void demultiplexer(benchmark::State& state) {
  const Stream& stream = streamOf(state.range(0));
  const auto read = static_cast<std::size_t>(state.range(1));
  CameraDataParser parser;
  const auto player = std::make_shared<CountingPlayer>();
  parser.setPreviewPlayer(player);
  for (auto _ : state) {
    forEachRead(stream.bytes, read, [&](const std::uint8_t* bytes, std::size_t length) {
      parser.parserData({bytes, length});
    });
    benchmark::DoNotOptimize(player->seen);
  }
  report(state, stream);
}

Bytes makeGarbage() {
  std::mt19937 random(2);
  Bytes garbage(static_cast<std::size_t>(kHot));
  for (auto& byte : garbage) byte = static_cast<std::uint8_t>(random());
  return garbage;
}

void markerSearch(benchmark::State& state) {
  const Bytes garbage = makeGarbage();
  for (auto _ : state) benchmark::DoNotOptimize(findMarker(garbage));
  state.SetBytesProcessed(state.iterations() * kHot);
}

void markerSearchByteLoop(benchmark::State& state) {
  const Bytes garbage = makeGarbage();
  for (auto _ : state) {
    std::size_t found = 0;
    for (std::size_t at = 0; at + dataSynchronismValue.size() <= garbage.size(); ++at) {
      if (std::equal(dataSynchronismValue.begin(), dataSynchronismValue.end(), garbage.data() + at)) found = at;
    }
    benchmark::DoNotOptimize(found);
  }
  state.SetBytesProcessed(state.iterations() * kHot);
}

void garbageCopy(benchmark::State& state) {
  const Bytes garbage = makeGarbage();
  Bytes into(garbage.size());
  for (auto _ : state) {
    std::memcpy(into.data(), garbage.data(), garbage.size());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * kHot);
}

void sizesAndReads(benchmark::internal::Benchmark* bench) {
  for (const std::int64_t size : {kHot, kCold}) {
    for (const std::int64_t read : {512, 16 * 1024, 2 * 1024 * 1024}) bench->Args({size, read});
  }
}

BENCHMARK(chunkCopy)->Apply(sizesAndReads);
BENCHMARK(gatheringCopy)->Args({kHot, 512})->Args({kHot, 16 * 1024});
BENCHMARK(lengthWalker)->Apply(sizesAndReads);
BENCHMARK(demultiplexer)->Apply(sizesAndReads);
BENCHMARK(demultiplexer)->Args({kHot, 1})->Args({kHot, 64});
BENCHMARK(markerSearch);
BENCHMARK(markerSearchByteLoop);
BENCHMARK(garbageCopy);

std::vector<Ratio> ratios() {
  std::vector<Ratio> result;
  const auto add = [&](std::int64_t size, std::int64_t read, double aim) {
    const std::string args = "/" + std::to_string(size) + "/" + std::to_string(read);
    const std::string label = (size == kHot ? "in cache, reads of " : "from memory, reads of ") + std::to_string(read);
    result.push_back({"de-multiplexer / chunk copy, " + label, "demultiplexer" + args, "chunkCopy" + args, aim});
    result.push_back({"de-multiplexer / length walker, " + label, "demultiplexer" + args, "lengthWalker" + args, 1.0});
  };
  add(kHot, 512, 1.4);
  add(kHot, 16 * 1024, 1.05);
  result.push_back({"de-multiplexer / copy that gathers, in cache, reads of 16384", "demultiplexer/1048576/16384",
                    "gatheringCopy/1048576/16384", 1.05});
  add(kHot, 2 * 1024 * 1024, 0);
  add(kCold, 512, 0);
  add(kCold, 16 * 1024, 0);
  add(kCold, 2 * 1024 * 1024, 0);
  result.push_back({"marker search / copy of the same garbage", "markerSearch", "garbageCopy", 0});
  result.push_back({"marker search / byte loop", "markerSearch", "markerSearchByteLoop", 0});
  return result;
}

}  // namespace
}  // namespace zel::bench

int main(int argc, char** argv) { return zel::bench::runAndCompare(argc, argv, zel::bench::ratios()); }

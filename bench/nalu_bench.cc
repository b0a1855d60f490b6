// How fast start codes are found and units cut, beside what a machine can do at best.
//
// The stream is random bytes without start codes, cut into units of 115 kB, the mean of a camera that sends 30 Mbit/s:
// 1 MiB that stays in cache, and 64 MiB from memory. It is given in chunks of one unit, as the camera frames them.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "base/wire.h"
#include "bench/ratio_report.h"
#include "media/h264_nalu_parser.h"
#include "media/start_code.h"

#ifdef ZEL_BENCH_LIBAVCODEC
extern "C" {
#include <libavcodec/avcodec.h>
}
#endif

namespace zel::bench {
namespace {

constexpr std::int64_t kHot = 1 << 20;
constexpr std::int64_t kCold = 64 << 20;
constexpr std::size_t kUnit = 115'000;

Bytes makeStream(std::int64_t size) {
  std::mt19937_64 random(1);
  Bytes stream(static_cast<std::size_t>(size) / kUnit * kUnit);
  std::size_t at = 0;
  for (; at + 8 <= stream.size(); at += 8) {
    const std::uint64_t number = random();
    std::memcpy(stream.data() + at, &number, sizeof(number));
  }
  // No start code by chance: an encoder puts a byte between such zeros too.
  for (at = 3; at < stream.size(); ++at) {
    if (isStartCode(stream.data() + at - 3)) stream[at] = 3;
  }
  for (at = 0; at < stream.size(); at += kUnit)
    std::ranges::copy(Bytes{0, 0, 0, 1, 0x41}, stream.begin() + static_cast<std::ptrdiff_t>(at));
  return stream;
}

const Bytes& streamOf(std::int64_t size) {
  static const Bytes hot = makeStream(kHot);
  static const Bytes cold = makeStream(kCold);
  return size == kHot ? hot : cold;
}

void report(benchmark::State& state, const Bytes& stream) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(stream.size()));
}

// The limit: every byte is loaded and no more.
#if defined(__x86_64__)
[[gnu::target("avx2")]]
#endif
std::uint64_t
combined(const Bytes& stream) {
  std::uint64_t all = 0;
  for (std::size_t at = 0; at + 512 <= stream.size(); at += 512) {
    std::uint64_t block = 0;
    for (std::size_t i = 0; i < 512; i += 8) {
      std::uint64_t word = 0;
      std::memcpy(&word, stream.data() + at + i, sizeof(word));
      block |= word;
    }
    all |= block;
  }
  return all;
}

void loadEveryByte(benchmark::State& state) {
  const Bytes& stream = streamOf(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(combined(stream));
  report(state, stream);
}

template <class Find>
void searchAll(benchmark::State& state, Find&& find) {
  const Bytes& stream = streamOf(state.range(0));
  for (auto _ : state) {
    std::size_t found = 0;
    const std::uint8_t* const end = stream.data() + stream.size() - 3;
    for (const std::uint8_t* at = find(stream.data(), end); at < end; at = find(at + 1, end)) ++found;
    if (found != stream.size() / kUnit) state.SkipWithError("wrong count of start codes");
    benchmark::DoNotOptimize(found);
  }
  report(state, stream);
}

void search(benchmark::State& state) { searchAll(state, findStartCode); }

void searchWithMemchr(benchmark::State& state) {
  searchAll(state, [](const std::uint8_t* at, const std::uint8_t* end) {
    while (at < end) {
      const void* const zero = std::memchr(at, 0, static_cast<std::size_t>(end - at));
      if (zero == nullptr) return end;
      at = static_cast<const std::uint8_t*>(zero);
      if (isStartCode(at)) return at;
      ++at;
    }
    return end;
  });
}

void searchByteByByte(benchmark::State& state) {
  searchAll(state, [](const std::uint8_t* at, const std::uint8_t* end) {
    while (at < end && !isStartCode(at)) ++at;
    return at;
  });
}

// The limit of cutting: each unit copied to a block of its own, the cuts known. As in the cutter, the units of a chunk
// go out together, and the last is held back.
void bareCopy(benchmark::State& state) {
  const Bytes& stream = streamOf(state.range(0));
  const auto chunk = static_cast<std::size_t>(state.range(1));
  std::shared_ptr<orq::MediaBuffer> held;
  for (auto _ : state) {
    std::vector<std::shared_ptr<orq::MediaBuffer>> units;
    for (std::size_t at = 0; at < stream.size(); at += kUnit) {
      units.push_back(std::move(held));
      held = std::make_shared<orq::MediaBuffer>(stream.data() + at, static_cast<int>(kUnit), 0);
      if (units.size() * kUnit < chunk) continue;
      benchmark::DoNotOptimize(units.data());
      units.clear();
    }
  }
  report(state, stream);
}

void cutInChunks(benchmark::State& state) {
  const Bytes& stream = streamOf(state.range(0));
  const auto chunk = static_cast<std::size_t>(state.range(1));
  orq::H264NaluParser parser;
  for (auto _ : state) {
    for (std::size_t at = 0; at < stream.size(); at += chunk) {
      const std::size_t size = std::min(chunk, stream.size() - at);
      benchmark::DoNotOptimize(parser.AppendData(stream.data() + at, static_cast<int>(size)));
    }
  }
  report(state, stream);
}

#ifdef ZEL_BENCH_LIBAVCODEC
// The peer: a parser that finds access units and reads their headers besides.
void libavcodecParser(benchmark::State& state) {
  const Bytes& stream = streamOf(state.range(0));
  const auto chunk = static_cast<std::size_t>(state.range(1));
  AVCodecParserContext* const parser = av_parser_init(AV_CODEC_ID_H264);
  AVCodecContext* const context = avcodec_alloc_context3(nullptr);
  av_log_set_level(AV_LOG_QUIET);
  for (auto _ : state) {
    for (std::size_t at = 0; at < stream.size(); at += chunk) {
      const std::uint8_t* data = stream.data() + at;
      int left = static_cast<int>(std::min(chunk, stream.size() - at));
      while (left > 0) {
        std::uint8_t* unit = nullptr;
        int size = 0;
        const int taken =
            av_parser_parse2(parser, context, &unit, &size, data, left, AV_NOPTS_VALUE, AV_NOPTS_VALUE, 0);
        benchmark::DoNotOptimize(unit);
        data += taken;
        left -= taken;
      }
    }
  }
  report(state, stream);
  av_parser_close(parser);
  AVCodecContext* freed = context;
  avcodec_free_context(&freed);
}
BENCHMARK(libavcodecParser)->Args({kCold, 2 << 20})->Args({kCold, kUnit});
#endif

void bothSizes(benchmark::internal::Benchmark* bench) { bench->Arg(kHot)->Arg(kCold); }

BENCHMARK(loadEveryByte)->Apply(bothSizes);
BENCHMARK(search)->Apply(bothSizes);
BENCHMARK(searchWithMemchr)->Apply(bothSizes);
BENCHMARK(searchByteByByte)->Apply(bothSizes);
BENCHMARK(bareCopy)->Args({kHot, kUnit})->Args({kCold, kUnit})->Args({kCold, 2 << 20});
BENCHMARK(cutInChunks)
    ->Args({kHot, kUnit})
    ->Args({kCold, kUnit})
    ->Args({kCold, 2 << 20})
    ->Args({kCold, 40'000})
    ->Args({kCold, 1400});

std::vector<Ratio> ratios() {
  std::vector<Ratio> result;
  for (const std::int64_t size : {kHot, kCold}) {
    const std::string arg = "/" + std::to_string(size);
    const std::string where = size == kHot ? ", in cache" : ", from memory";
    result.push_back({"search / load of every byte" + where, "search" + arg, "loadEveryByte" + arg, 1 / 0.85});
    result.push_back(
        {"search / memchr" + where, "search" + arg, "searchWithMemchr" + arg, size == kHot ? 1 / 2.8 : 1 / 1.8});
    result.push_back(
        {"search / byte loop" + where, "search" + arg, "searchByteByByte" + arg, size == kHot ? 1 / 25.0 : 0});
  }
  const std::string cold = "/" + std::to_string(kCold);
  const auto cutting = [&](const std::string& what, const std::string& chunk, const std::string& against, double aim) {
    result.push_back({what, "cutInChunks" + cold + "/" + chunk, against, aim});
  };
  result.push_back({"cutting / bare copy, in cache", "cutInChunks/" + std::to_string(kHot) + "/115000",
                    "bareCopy/" + std::to_string(kHot) + "/115000", 0});
  cutting("cutting / bare copy, chunks of one unit", "115000", "bareCopy" + cold + "/115000", 1.25);
  cutting("cutting / bare copy, chunks of 2 MiB", "2097152", "bareCopy" + cold + "/2097152", 0);
  cutting("cutting / bare copy, chunks of 40 kB", "40000", "bareCopy" + cold + "/115000", 0);
  cutting("cutting / bare copy, chunks of 1,400 B", "1400", "bareCopy" + cold + "/115000", 0);
#ifdef ZEL_BENCH_LIBAVCODEC
  cutting("cutting / libavcodec's parser, chunks of 2 MiB", "2097152", "libavcodecParser" + cold + "/2097152", 0.45);
  cutting("cutting / libavcodec's parser, chunks of one unit", "115000", "libavcodecParser" + cold + "/115000", 0.45);
#endif
  return result;
}

}  // namespace
}  // namespace zel::bench

int main(int argc, char** argv) {
  // As in a process that decodes: a large block that was freed tells the C heap to keep what it has for the next ones.
  void* picture = std::malloc(8 << 20);
  benchmark::DoNotOptimize(picture);
  std::free(picture);
  return zel::bench::runAndCompare(argc, argv, zel::bench::ratios());
}

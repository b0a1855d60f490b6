// How fast and how well the stitcher makes an equirectangular picture, beside FFmpeg's v360 filter and a plain copy of
// the picture. The world is noise of many sizes, as fine as leaves; the fisheye picture is made by the simulated
// camera's exact geometry.

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixfmt.h>
}
#include <hwy/targets.h>

#include "bench/ratio_report.h"
#include "bench/sphere_filter.h"
#include "platform/render/stitcher.h"
#include "simulator/fisheye.h"
#include "tests/platform/render/pictures.h"

namespace zel::bench {
namespace {

constexpr int kSourceWidth = 3040, kSourceHeight = 1520;
constexpr int kWorldWidth = 6080, kWorldHeight = 3040;

// Straight lenses whose circles touch each other, for v360 knows no others.
const std::string kOffset =
    "2_760.000_760.000_760.000_0.000_0.000_0.000_760.000_2280.000_760.000_180.000_0.000_0.000_3040_1520_7";

simulator::LensOffset lensOffset() {
  return {.width = kSourceWidth,
          .height = kSourceHeight,
          .model = simulator::kEquidistant195,
          .lenses = {{{.radius = 760, .centreX = 760, .centreY = 760},
                      {.radius = 760, .centreX = 2280, .centreY = 760, .yaw = 180}}}};
}

// Between 0 and 1 for every corner of a grid; columns repeat, so that the world closes behind.
double grain(int x, int y, int columns, int layer) {
  auto seed = static_cast<std::uint32_t>((x % columns) * 73856093) ^ static_cast<std::uint32_t>(y * 19349663) ^
              static_cast<std::uint32_t>(layer * 83492791);
  seed = (seed ^ seed >> 15) * 2246822519u;
  seed = (seed ^ seed >> 13) * 3266489917u;
  return static_cast<double>(seed >> 8) / (1 << 24);
}

// Grains of so many pixels, with smooth passages between them.
double noise(int x, int y, int size, int layer) {
  const int column = x / size, row = y / size, columns = kWorldWidth / size;
  const double right = static_cast<double>(x % size) / size, down = static_cast<double>(y % size) / size;
  const double above =
      grain(column, row, columns, layer) * (1 - right) + grain(column + 1, row, columns, layer) * right;
  const double below =
      grain(column, row + 1, columns, layer) * (1 - right) + grain(column + 1, row + 1, columns, layer) * right;
  return above * (1 - down) + below * down;
}

simulator::Picture makeWorld() {
  simulator::Picture world = simulator::blackPicture(kWorldWidth, kWorldHeight);
  for (int y = 0; y < kWorldHeight; ++y) {
    for (int x = 0; x < kWorldWidth; ++x) {
      const double fine = 30 * noise(x, y, 4, 1) + 40 * noise(x, y, 8, 2) + 60 * noise(x, y, 32, 3);
      std::uint8_t* rgb = world.rgb.data() + simulator::indexOf(world, x, y);
      for (int colour = 0; colour < 3; ++colour)
        rgb[colour] = render::byteOf(fine + 110 * noise(x, y, 160, 10 + colour));
    }
  }
  return world;
}

const simulator::Picture& world() {
  static const simulator::Picture picture = makeWorld();
  return picture;
}

const platform::PixelBuffer& fisheye() {
  static const auto picture =
      render::nv12Of(simulator::FisheyeProjector(lensOffset(), kSourceWidth, kSourceHeight, kWorldWidth, kWorldHeight)
                         .project(world()));
  return *picture;
}

// The world as large as the stitched picture, each pixel the mean of those that it covers.
render::PicturePtr reference(int width) {
  const int height = width / 2;
  simulator::Picture small = simulator::blackPicture(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const int left = x * kWorldWidth / width, right = (x + 1) * kWorldWidth / width;
      const int top = y * kWorldHeight / height, bottom = (y + 1) * kWorldHeight / height;
      double sum[3] = {};
      for (int row = top; row < bottom; ++row) {
        for (int i = 3 * left; i < 3 * right; ++i)
          sum[i % 3] += world().rgb[simulator::indexOf(world(), 0, row) + static_cast<std::size_t>(i)];
      }
      for (std::size_t i = 0; i < 3; ++i)
        small.rgb[simulator::indexOf(small, x, y) + i] = render::byteOf(sum[i] / ((right - left) * (bottom - top)));
    }
  }
  return render::nv12Of(small);
}

std::shared_ptr<AVFrame> planarFisheye() {
  std::shared_ptr<AVFrame> frame(av_frame_alloc(), [](AVFrame* doomed) { av_frame_free(&doomed); });
  frame->format = AV_PIX_FMT_YUV420P;
  frame->width = kSourceWidth;
  frame->height = kSourceHeight;
  if (av_frame_get_buffer(frame.get(), 0) < 0) return nullptr;
  for (int y = 0; y < kSourceHeight; ++y) {
    const auto row = static_cast<std::size_t>(y);
    std::memcpy(frame->data[0] + y * frame->linesize[0], fisheye().luma().data + row * fisheye().luma().stride,
                kSourceWidth);
    if (y % 2 != 0) continue;
    for (int x = 0; x < kSourceWidth; ++x)
      frame->data[1 + x % 2][y / 2 * frame->linesize[1] + x / 2] =
          static_cast<std::uint8_t>(render::at(fisheye().chroma(), static_cast<std::size_t>(x), row / 2));
  }
  return frame;
}

// Its second circle is the one that looks forward.
std::string sphereOptions(int width) {
  return "input=dfisheye:output=e:ih_fov=195:iv_fov=195:interp=linear:yaw=180:w=" + std::to_string(width) +
         ":h=" + std::to_string(width / 2);
}

std::unique_ptr<render::Stitcher> stitcherOf(int width, int threads) {
  return render::Stitcher::create(kOffset, {width, width / 2}, {.threads = threads}).stitcher;
}

void stitch(benchmark::State& state, std::int64_t withoutTargets) {
  hwy::DisableTargets(withoutTargets);
  const int width = static_cast<int>(state.range(0));
  const auto stitcher = stitcherOf(width, static_cast<int>(state.range(1)));
  const auto picture = platform::MemoryPixelBuffer::create(width, width / 2);
  if (!stitcher->stitch(fisheye(), render::outputOf(*picture))) state.SkipWithError("the stitcher refuses");
  for (auto _ : state) benchmark::DoNotOptimize(stitcher->stitch(fisheye(), render::outputOf(*picture)));
  hwy::DisableTargets(0);
}

void stitched(benchmark::State& state) { stitch(state, 0); }
#if HWY_ARCH_X86
void stitchedWithAvx2(benchmark::State& state) { stitch(state, HWY_AVX3 | HWY_AVX3_DL); }
#endif

void sphereFilter(benchmark::State& state) {
  const int width = static_cast<int>(state.range(0));
  SphereFilter filter(kSourceWidth, kSourceHeight, static_cast<int>(state.range(1)), sphereOptions(width));
  const auto source = planarFisheye();
  if (!filter.ready() || !source) {
    state.SkipWithError("this FFmpeg has no v360");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(filter.filter(*source));
}

// The limit: nothing but writing a picture of that size.
void pictureCopy(benchmark::State& state) {
  const auto bytes = static_cast<std::size_t>(state.range(0) * state.range(0) / 2 * 3 / 2);
  const std::vector<std::uint8_t> from(bytes, 1);
  std::vector<std::uint8_t> into(bytes);
  for (auto _ : state) {
    std::memcpy(into.data(), from.data(), bytes);
    benchmark::ClobberMemory();
  }
}

void stitcherStart(benchmark::State& state) {
  for (auto _ : state) {
    const auto stitcher = stitcherOf(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    benchmark::DoNotOptimize(stitcher->prepare({kSourceWidth, kSourceHeight}));
  }
}

void sphereFilterStart(benchmark::State& state) {
  for (auto _ : state) {
    const SphereFilter filter(kSourceWidth, kSourceHeight, static_cast<int>(state.range(1)),
                              sphereOptions(static_cast<int>(state.range(0))));
    benchmark::DoNotOptimize(filter.ready());
  }
}

void sizesAndThreads(benchmark::internal::Benchmark* bench) {
  bench->Unit(benchmark::kMillisecond)->UseRealTime();
  for (const std::int64_t width : {3040, 1920}) {
    for (const std::int64_t threads : {1, 2}) bench->Args({width, threads});
  }
}

BENCHMARK(stitched)->Apply(sizesAndThreads);
#if HWY_ARCH_X86
BENCHMARK(stitchedWithAvx2)->Apply(sizesAndThreads);
#endif
BENCHMARK(sphereFilter)->Apply(sizesAndThreads);
BENCHMARK(pictureCopy)->Unit(benchmark::kMillisecond)->UseRealTime()->Arg(3040)->Arg(1920);
BENCHMARK(stitcherStart)->Unit(benchmark::kMillisecond)->UseRealTime()->Args({3040, 1})->Args({3040, 2});
BENCHMARK(sphereFilterStart)->Unit(benchmark::kMillisecond)->UseRealTime()->Args({3040, 1});

std::vector<Ratio> ratios() {
  std::vector<Ratio> result;
  for (const std::string width : {"3040", "1920"}) {
    for (const std::string threads : {"1", "2"}) {
      const std::string args = "/" + width + "/" + threads + "/real_time";
      const std::string label = ", width " + width + ", threads " + threads;
      result.push_back(
          {"stitcher / v360 linear" + label, "stitched" + args, "sphereFilter" + args, threads == "1" ? 0.36 : 0.40});
      result.push_back(
          {"stitcher without AVX-512 / v360 linear" + label, "stitchedWithAvx2" + args, "sphereFilter" + args, 0.50});
      result.push_back({"stitcher / copy" + label, "stitched" + args, "pictureCopy/" + width + "/real_time", 0});
    }
  }
  result.push_back({"start-up / v360's, width 3040, threads 1", "stitcherStart/3040/1/real_time",
                    "sphereFilterStart/3040/1/real_time", 0.35});
  return result;
}

void printLine(const std::string& what, const platform::PixelPlane& plane, const platform::PixelPlane& truth) {
  std::printf("%-66s %8.2f %8.2f\n", what.c_str(), render::psnr(plane, truth), render::psnr(plane, truth, true));
}

void printQuality(int width) {
  const auto truth = reference(width);
  const auto picture = platform::MemoryPixelBuffer::create(width, width / 2);
  const auto stitcher = stitcherOf(width, 1);
  const std::string label = ", width " + std::to_string(width);
  if (stitcher->stitch(fisheye(), render::outputOf(*picture)))
    printLine("stitcher" + label, picture->luma(), truth->luma());
  std::printf("%-66s %8.2f MB\n", ("the stitcher's map" + label).c_str(),
              static_cast<double>(stitcher->mapBytes()) / 1e6);
  SphereFilter filter(kSourceWidth, kSourceHeight, 1, sphereOptions(width));
  const auto source = planarFisheye();
  const auto frame = filter.ready() && source ? filter.filter(*source) : nullptr;
  if (!frame) return;
  const auto side = static_cast<std::size_t>(width);
  printLine("v360 linear" + label, {frame->data[0], static_cast<std::size_t>(frame->linesize[0]), side, side / 2},
            truth->luma());
}

}  // namespace
}  // namespace zel::bench

int main(int argc, char** argv) {
  const int status = zel::bench::runAndCompare(argc, argv, zel::bench::ratios());
  std::printf("\n%-66s %8s %8s\n", "luma against the truth, dB", "PSNR", "weighted");
  for (const int width : {3040, 1920}) zel::bench::printQuality(width);
  return status;
}

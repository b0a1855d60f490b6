// The codecs and the renderer where memory ends: each allocation of theirs and of their libraries fails, one a run. A
// program of its own, because that replaces the allocator.

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "base/has_memory_for.h"
#include "platform/ffmpeg/h264_decoder.h"
#include "platform/ffmpeg/h264_encoder.h"
#include "platform/render/stitching_library.h"
#include "tests/allocation_fault.h"
#include "tests/platform/ffmpeg/streams/stream_maker.h"
#include "tests/platform/render/pictures.h"

namespace zel::test {
namespace {

constexpr long kEach = 2001;
constexpr long kBlock = 100;  // allocations of one test

const std::vector<Unit>& film() {
  static const std::vector<Unit> units = makeStream({.pictures = 4, .options = {{"preset", "ultrafast"}}});
  return units;
}

Unit prefixed(const Unit& unit) {
  Unit whole;
  for (int shift = 24; shift >= 0; shift -= 8) whole.push_back(static_cast<std::uint8_t>(unit.size() >> shift));
  whole.insert(whole.end(), unit.begin(), unit.end());
  return whole;
}

constexpr std::string_view kOpening = "the encoder opens\n", kOpened = "the encoder is open or not\n";
bool isApart = false;

// For whoever reads the errors of a process that has ended. It takes no memory.
void note(std::string_view line) {
  if (isApart) static_cast<void>(!::write(STDERR_FILENO, line.data(), line.size()));
}

// The way of a camera's pictures from their units to those of the stitched ones.
class Road {
 public:
  // Returns how many units came out.
  int run() {
    ifMemoryAllows([this] { open(); });
    if (decoder_) {
      for (const Unit& unit : units_) ifMemoryAllows([&] { take(decoder_->decode(unit, 1).picture); });
      ifMemoryAllows([this] { take(decoder_->flush()); });
    }
    return out_;
  }

 private:
  void open() {
    decoder_ = decoders_.create(sps_, pps_).decoder;
    render_ = library_.createFlatOffscreenRender(160, 80);
    if (render_) render_->setOffset(render::kFactoryOffset);
    encoder_ = encoders_.create({160, 80, 1'000'000, 30});
    note(kOpening);
    if (encoder_ && !encoder_->open()) encoder_.reset();
    note(kOpened);
    if (encoder_) encoder_->setNaluCallback([this](std::uint8_t*, std::int32_t, bool, platform::MediaTime) { ++out_; });
  }

  void take(const platform::DecodedPicture& picture) {
    if (!picture.pixelBuffer || !render_ || !encoder_) return;
    const auto stitched = render_->renderVideo(picture.pixelBuffer);
    if (stitched) encoder_->encodeImage(stitched, {picture.timestamp, 1000});
  }

  static std::vector<Unit> prefixedFilm() {
    const FaultyCode test(false);
    std::vector<Unit> units;
    for (const Unit& unit : slicesOf(film())) units.push_back(prefixed(unit));
    return units;
  }

  static Unit parameterSet(int type) {
    const FaultyCode test(false);
    return firstOf(film(), type);
  }

  const std::vector<Unit> units_ = prefixedFilm();
  const Unit sps_ = parameterSet(7), pps_ = parameterSet(8);
  platform::LibavVideoDecoders decoders_;
  render::StitchingLibrary library_{nullptr, {.threads = 3}};
  platform::LibavVideoEncoders encoders_;
  std::unique_ptr<platform::VideoDecoder> decoder_;
  std::unique_ptr<platform::FlatOffscreenRender> render_;
  std::unique_ptr<platform::VideoEncoder> encoder_;
  int out_ = 0;
};

// Runs with that allocation failing. Returns how many units came out.
int runFailing(long number) {
  const FaultyCode test(false);
  const AllocationFault fault(number);
  countOnOtherThreads(true);
  int out = 0;
  {
    const FaultyCode counted;
    out = Road().run();
  }
  countOnOtherThreads(false);
  return out;
}

// What came of a run in a process of its own, since libraries may end the one that they are in. Three things are
// theirs, and nobody but them can mend them:
// - libavcodec asserts that there is memory for the defaults of a context's options;
// - libavcodec reads through null where libx264 finds no memory for the headers of a stream that opens;
// - libx264 keeps what it has taken already where it finds no more.
struct End {
  int status = 0;
  std::string errors;

  bool isGood() const { return status == 0 || isOfTheLibrary(); }
  bool isOfTheLibrary() const {
    if (isSignal(SIGABRT)) return says("failed at src/libavcodec/options.c");
    if (isSignal(SIGSEGV)) return x264FoundNone() && says(kOpening) && !says(kOpened);
    return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_FAILURE && x264FoundNone();
  }

 private:
  bool isSignal(int number) const { return WIFSIGNALED(status) && WTERMSIG(status) == number; }
  bool says(std::string_view text) const { return errors.find(text) != std::string::npos; }
  bool x264FoundNone() const {
    return says("x264 [error]: malloc of size") || says("x264 [error]: x264_param_strdup failed");
  }
};

template <class Run>
End runApart(Run run) {
  const int errors = ::memfd_create("errors", MFD_CLOEXEC);
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(errors, STDERR_FILENO);
    isApart = true;
    ::_exit(run() ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  End end;
  ::waitpid(child, &end.status, 0);
  char text[4096];
  const ssize_t count = ::pread(errors, text, sizeof text, 0);
  end.errors.assign(text, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  ::close(errors);
  return end;
}

class LinuxMediaMemoryTest : public testing::TestWithParam<long> {
 protected:
  static void SetUpTestSuite() {
    for (int run = 0; run < 2; ++run) ASSERT_EQ(runFailing(0), 4);  // takes what is taken once and for all
    allocations = AllocationFault::counted();
  }

  static inline long allocations = 0;  // of a whole run

  static bool leavesNothing(long number) {
    const long before = heldBytes();
    return runFailing(number) <= 4 && heldBytes() == before;
  }

  // Where malloc() does not fail, no library ends the process.
  static void expectNothingLeft(long number) {
    if (!kMallocFails) {
      EXPECT_TRUE(leavesNothing(number)) << "allocation " << number;
      return;
    }
    const End end = runApart([number] { return leavesNothing(number); });
    EXPECT_TRUE(end.isGood()) << "allocation " << number << " ended with " << end.status << "\n" << end.errors;
  }
};

TEST_P(LinuxMediaMemoryTest, SurviveEachAllocationThatFailsAndKeepNothing) {
  const long end = std::min(GetParam() + kBlock, allocations + 1);
  for (long number = GetParam(); number < end; ++number) expectNothingLeft(number);
}

INSTANTIATE_TEST_SUITE_P(TheFirst, LinuxMediaMemoryTest, testing::Range(1L, kEach, kBlock));

TEST_F(LinuxMediaMemoryTest, HaveNoMoreAllocationsThanAreMadeToFail) {
  EXPECT_GT(allocations, kMallocFails ? 500 : 20);
  EXPECT_LT(allocations, kEach);
}

}  // namespace
}  // namespace zel::test

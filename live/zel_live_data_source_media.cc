// The path of pictures and sound.

#include <ZELTarkaSDK/ZELLiveDataSource.h>

#include <algorithm>
#include <utility>

#include "base/has_memory_for.h"
#include "live/zel_live_data_source_state.h"

using zel::ifMemoryAllows;
using zel::LiveFrame;
using zel::MutexLock;

namespace {

// A size from an encoder.
std::size_t sizeOf(std::int32_t size) { return static_cast<std::size_t>(std::max(size, 0)); }

}  // namespace

// From the player

void ZELLiveDataSource::onPixelBuffer(const zel::platform::PixelBufferRef& pixelBuffer, std::int64_t timestamp) {
  const auto time = state_->output.takePicture(timestamp, cancelled());
  if (!time) return;
  ifMemoryAllows([&] {
    if (const auto delegate = dataSourceDelegate()) delegate->sourceOnRawPixelBuffer(pixelBuffer, *time);
  });
  LiveFrame frame;
  ifMemoryAllows([&] { frame = std::make_shared<orq::MediaPixelBuffer>(pixelBuffer, *time); });
  state_->stitching.append(std::move(frame));
}

void ZELLiveDataSource::onAACHeader(Bytes header) { state_->output.onAACHeader(header); }
void ZELLiveDataSource::onAACAdts(Bytes data, std::int64_t timestamp) { state_->output.onAACAdts(data, timestamp); }
void ZELLiveDataSource::onSps(Bytes, Bytes) {}
void ZELLiveDataSource::onH264Nalu(Bytes, bool, std::int64_t) {}

// The two threads

void ZELLiveDataSource::runRenderThread(std::uint64_t run) {
  state_->stitching.run([this, run] { return state_->run.isOver(run); },
                        [this](LiveFrame stitched) {
                          ifMemoryAllows([&] {
                            const auto delegate = dataSourceDelegate();
                            if (!delegate) return;
                            delegate->sourceOnStitchPixelBuffer(stitched->pixelBuffer, stitched->timestamp);
                          });
                          state_->encoding.append(std::move(stitched));
                        });
}

// Deliberate: the stop waits for its own thread, and so forever. The delegate has been told before, and the render
// thread ends.
void ZELLiveDataSource::runEncodeThread(std::uint64_t run) {
  state_->encoding.run([this, run] { return state_->run.isOver(run); },
                       [this] {
                         fail(7, "encode image error");
                         stopLiveData();
                       });
}

// The encoder

// The encoder's callbacks keep the source alive until the stop destroys the encoder. One that is opened after the stop
// is dropped, since no other stop follows.
void ZELLiveDataSource::startEncoding(std::uint64_t run) {
  if (!zel::hasMemoryFor([&] { openEncoder(run); })) fail(7, "failed to open encoder");
}

void ZELLiveDataSource::openEncoder(std::uint64_t run) {
  const auto narrow = [](std::uint64_t value) { return static_cast<std::int32_t>(value); };
  auto encoder = state_->encoding.open({narrow(width()), narrow(height()), narrow(bitrate()), narrow(fps())});
  if (!encoder) {
    state_->encoding.install(nullptr);
    return fail(7, "failed to open encoder");
  }
  const auto self = shared_from_this();
  encoder->setSpsPpsCallback(
      [self](const std::uint8_t* sps, std::int32_t spsSize, const std::uint8_t* pps, std::int32_t ppsSize) {
        self->state_->output.addVideoStream({sps, sizeOf(spsSize)}, {pps, sizeOf(ppsSize)});
      });
  encoder->setNaluCallback([self](std::uint8_t* data, std::int32_t size, bool keyFrame, zel::platform::MediaTime time) {
    self->state_->output.addH264Nalu({data, sizeOf(size)}, keyFrame, time.value);
  });
  {
    const MutexLock lock(state_->attachMutex);
    if (state_->run.isOver(run)) return;
    encoder = state_->encoding.install(std::move(encoder));
  }
  encoder.reset();
  state_->parts.ports.queues.globalQueue().post([self, run] { self->runEncodeThread(run); });
}

zel::LiveStatistics ZELLiveDataSource::statistics() const {
  zel::LiveStatistics statistics;
  state_->output.copyStatistics(statistics);
  state_->stitching.copyStatistics(statistics);
  state_->encoding.copyStatistics(statistics);
  return statistics;
}

// The camera's commands, and their errors for the delegate.

#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELLiveDataSource.h>

#include "base/has_memory_for.h"
#include "live/zel_live_data_source_state.h"

namespace {

using Error = std::optional<ZELError>;

}  // namespace

// Each request that finds no memory fails as one that the camera refuses.
void ZELLiveDataSource::setCameraPreviewOn(bool on, ResultBlock result) {
  if (zel::hasMemoryFor([&] { requestPreview(on, result); })) return;
  fail(on ? 4 : 5, on ? "failed to open camera video stream" : "failed to close camera video stream");
  if (result) result(false);
}

void ZELLiveDataSource::requestPreview(bool on, const ResultBlock& result) {
  const auto done = [weak = weak_from_this(), on, result](const Error& error) {
    const auto self = weak.lock();
    if (self && error && on) self->fail(4, "failed to open camera video stream");
    if (self && error && !on) self->fail(5, "failed to close camera video stream");
    if (result) result(!error);
  };
  ZELCameraUCD& ucd = *state_->parts.ucd;
  if (!on) return ucd.msgCmdStopVPWithRebackBlock(done);
  ucd.msgCmdStartVideoWithVideoRes(static_cast<std::uint8_t>(resolution()),
                                   [done](const Error& error, std::uint8_t) { done(error); });
}

void ZELLiveDataSource::setCameraAudioOn(bool on, ResultBlock result) {
  if (zel::hasMemoryFor([&] { requestAudio(on, result); })) return;
  fail(6, "failed to switch audio");
  if (result) result(false);
}

void ZELLiveDataSource::requestAudio(bool on, const ResultBlock& result) {
  state_->parts.ucd->msgReqSwitchAudioStreamType(on ? kAudioStreamOn : kAudioStreamOff,
                                                 [weak = weak_from_this(), result](const Error& error) {
                                                   const auto self = weak.lock();
                                                   if (self && error) self->fail(6, "failed to switch audio");
                                                   if (result) result(!error);
                                                 });
}

void ZELLiveDataSource::getCameraMediaOffset(OffsetBlock result) {
  if (zel::hasMemoryFor([&] { requestOffset(result); })) return;
  fail(3, "failed to get camera offset");
  if (result) result(false, std::nullopt);
}

void ZELLiveDataSource::requestOffset(const OffsetBlock& result) {
  state_->parts.ucd->msgReqGetMediaOffset(
      kMediaOffsetOfCamera, static_cast<std::uint8_t>(resolution() & 0xFF),
      [weak = weak_from_this(), result](const Error& error, const std::optional<std::string>& offset) {
        const auto self = weak.lock();
        if (self && error) self->fail(3, "failed to get camera offset");
        if (result) result(!error, offset);
      });
}

void ZELLiveDataSource::failWithErrorCode(std::int64_t code, const std::string& description) {
  fail(code, description);
}

// Where there is no memory for the report either, nobody hears of it.
void ZELLiveDataSource::fail(std::int64_t code, std::string_view description) {
  zel::ifMemoryAllows([&] {
    const ZELError error{kZELLiveSourceErrorDomain, static_cast<int>(code), std::string(description)};
    state_->parts.ports.queues.mainQueue().post([self = shared_from_this(), error] {
      if (const auto delegate = self->dataSourceDelegate()) delegate->sourceOnError(error);
    });
  });
}

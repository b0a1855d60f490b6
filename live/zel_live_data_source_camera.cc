// The camera's commands, and their errors for the delegate.

#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELLiveDataSource.h>

#include <utility>

#include "live/zel_live_data_source_state.h"

namespace {

constexpr std::uint8_t kAudioOn = 1, kAudioOff = 0;
constexpr std::uint8_t kOffsetOfCamera = 0;

using Error = std::optional<ZELError>;

}  // namespace

void ZELLiveDataSource::setCameraPreviewOn(bool on, ResultBlock result) {
  const auto done = [weak = weak_from_this(), on, result = std::move(result)](const Error& error) {
    const auto self = weak.lock();
    if (self && error && on) self->failWithErrorCode(4, "failed to open camera video stream");
    if (self && error && !on) self->failWithErrorCode(5, "failed to close camera video stream");
    if (result) result(!error);
  };
  ZELCameraUCD& ucd = *state_->parts.ucd;
  if (!on) return ucd.msgCmdStopVPWithRebackBlock(done);
  ucd.msgCmdStartVideoWithVideoRes(static_cast<std::uint8_t>(resolution()),
                                   [done](const Error& error, std::uint8_t) { done(error); });
}

void ZELLiveDataSource::setCameraAudioOn(bool on, ResultBlock result) {
  state_->parts.ucd->msgReqSwitchAudioStreamType(
      on ? kAudioOn : kAudioOff, [weak = weak_from_this(), result = std::move(result)](const Error& error) {
        const auto self = weak.lock();
        if (self && error) self->failWithErrorCode(6, "failed to switch audio");
        if (result) result(!error);
      });
}

void ZELLiveDataSource::getCameraMediaOffset(OffsetBlock result) {
  state_->parts.ucd->msgReqGetMediaOffset(kOffsetOfCamera, static_cast<std::uint8_t>(resolution() & 0xFF),
                                          [weak = weak_from_this(), result = std::move(result)](
                                              const Error& error, const std::optional<std::string>& offset) {
                                            const auto self = weak.lock();
                                            if (self && error)
                                              self->failWithErrorCode(3, "failed to get camera offset");
                                            if (result) result(!error, offset);
                                          });
}

void ZELLiveDataSource::failWithErrorCode(std::int64_t code, const std::string& description) {
  const ZELError error{kZELLiveSourceErrorDomain, static_cast<int>(code), description};
  state_->parts.ports.queues.mainQueue().post([self = shared_from_this(), error] {
    if (const auto delegate = self->dataSourceDelegate()) delegate->sourceOnError(error);
  });
}

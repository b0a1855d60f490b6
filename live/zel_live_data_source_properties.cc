// The properties.

#include <ZELTarkaSDK/ZELLiveDataSource.h>

#include <utility>

#include "live/zel_live_data_source_state.h"

void ZELLiveDataSource::setDataSourceDelegate(std::weak_ptr<ZELLiveDataSourceProtocol> delegate) {
  state_->output.setDelegate(std::move(delegate));
}
std::shared_ptr<ZELLiveDataSourceProtocol> ZELLiveDataSource::dataSourceDelegate() const {
  return state_->output.delegate();
}

std::uint64_t ZELLiveDataSource::resolution() const { return state_->settings.resolution.get(); }
std::uint64_t ZELLiveDataSource::width() const { return state_->settings.width.get(); }
std::uint64_t ZELLiveDataSource::height() const { return state_->settings.height.get(); }
std::uint64_t ZELLiveDataSource::bitrate() const { return state_->settings.bitrate.get(); }
std::uint64_t ZELLiveDataSource::fps() const { return state_->settings.fps.get(); }
void ZELLiveDataSource::setResolution(std::uint64_t resolution) { state_->settings.resolution.set(resolution); }
void ZELLiveDataSource::setWidth(std::uint64_t width) { state_->settings.width.set(width); }
void ZELLiveDataSource::setHeight(std::uint64_t height) { state_->settings.height.set(height); }
void ZELLiveDataSource::setBitrate(std::uint64_t bitrate) { state_->settings.bitrate.set(bitrate); }
void ZELLiveDataSource::setFps(std::uint64_t fps) { state_->settings.fps.set(fps); }

bool ZELLiveDataSource::isStitch() const { return state_->settings.isStitch.get(); }
bool ZELLiveDataSource::isEncode() const { return state_->settings.isEncode.get(); }
void ZELLiveDataSource::setIsStitch(bool isStitch) { state_->settings.isStitch.set(isStitch); }
void ZELLiveDataSource::setIsEncode(bool isEncode) { state_->settings.isEncode.set(isEncode); }

float ZELLiveDataSource::logoAngle() const { return state_->settings.logoAngle.get(); }
std::optional<zel::platform::RgbaImage> ZELLiveDataSource::logoImage() const {
  return state_->settings.logoImage.get();
}
void ZELLiveDataSource::setLogoAngle(float angle) { state_->settings.logoAngle.set(angle); }
void ZELLiveDataSource::setLogoImage(std::optional<zel::platform::RgbaImage> image) {
  state_->settings.logoImage.set(std::move(image));
}

bool ZELLiveDataSource::removePurple() const { return state_->settings.removePurple.get(); }
void ZELLiveDataSource::setRemovePurple(bool removePurple) { state_->stitching.setRemovePurple(removePurple); }

std::optional<std::string> ZELLiveDataSource::url() const { return state_->settings.url.get(); }
void ZELLiveDataSource::setUrl(std::optional<std::string> url) { state_->settings.url.set(std::move(url)); }

bool ZELLiveDataSource::cancelled() const { return state_->run.cancelled(); }
bool ZELLiveDataSource::isPreview() const { return state_->isPreview.load(); }
bool ZELLiveDataSource::isLive() const { return state_->run.isLive(); }
bool ZELLiveDataSource::hasVideo() const { return state_->output.hasVideo(); }
bool ZELLiveDataSource::hasAudio() const { return state_->output.hasAudio(); }
std::int32_t ZELLiveDataSource::encodeFailCount() const { return state_->encoding.encodeFailCount(); }
std::int64_t ZELLiveDataSource::firstTimestamp() const { return state_->output.firstTimestamp(); }
std::int64_t ZELLiveDataSource::bufferTimestamp() const { return state_->output.bufferTimestamp(); }
std::optional<std::string> ZELLiveDataSource::offset() const { return state_->settings.offset.get(); }
std::shared_ptr<ZELPreviewPlayer> ZELLiveDataSource::player() const { return state_->player.get(); }

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/LinuxMedia.h>
#include <ZELTarkaSDK/platform/ports.h>
#include <ZELTarkaSDK/zel.h>

#include <memory>
#include <mutex>
#include <utility>

#include "bindings/c/ask.h"
#include "bindings/c/picture_object.h"
#include "bindings/c/stitching.h"

// Stitched pictures.

namespace zel::c {
namespace {

// What stitches for a program. It has its own renderer, so that it outlives the camera.
//
// Thread: any thread.
class StitcherObject {
 public:
  using Handle = zel_stitcher;
  static constexpr Kind kKind = Kind::stitcher;

  // Errors: refused for a size that cannot be rendered.
  StitcherObject(const platform::Ports& ports, const zel_stitch_options& given)
      : media_(ports, {.warn = [this](const std::string& fault) { fault_ = fault; }}) {
    const auto [width, height] = stitchedSize(given.width, given.height);
    render_ = media_.ports().mediaLibrary->createFlatOffscreenRender(width, height);
    if (!render_) refuse("pictures cannot be stitched in this size");
    render_->setOffset(given.offset);
    render_->setIsRenderVideo(true);
    render_->setRemovePurple(given.remove_purple != 0);
    render_->setLogoImage(logoOf(given.logo, given.logo_width, given.logo_height));
    render_->setLogoAngle(static_cast<float>(given.logo_angle));
  }

  Picture stitch(const Picture& picture) {
    const std::lock_guard lock(mutex_);
    fault_.clear();
    const auto stitched = render_->renderVideo(picture.pixels);
    if (!stitched)
      fail({CameraError::Reason::media, fault_.empty() ? "the picture could not be stitched" : std::move(fault_)});
    return {stitched, picture.time};
  }

 private:
  std::mutex mutex_;
  std::string fault_;  // what the renderer has said, in a call of it
  LinuxMedia media_;
  std::unique_ptr<platform::FlatOffscreenRender> render_;
};

}  // namespace
}  // namespace zel::c

using namespace zel::c;

zel_status zel_stitcher_new(zel_camera* camera, const zel_stitch_options* options, zel_stitcher** stitcher,
                            zel_error* error) {
  return guarded(error, [&] {
    checkGiven(stitcher, "stitcher");
    const zel_stitch_options given = taken(options, "options");
    checkGiven(given.offset, "options->offset");
    const auto object = objectOf<CameraObject>(camera);
    *stitcher = newHandle(object->with(
        [&](zel::Camera& asked) { return std::make_shared<StitcherObject>(asked.stack().ports(), given); }));
  });
}

zel_status zel_stitch(zel_stitcher* stitcher, zel_picture* picture, zel_picture** stitched, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(stitched, "stitched");
    const auto object = objectOf<StitcherObject>(stitcher);
    const auto from = objectOf<PictureObject>(picture);
    *stitched = pictureHandle(object->stitch(from->picture));
  });
}

zel_status zel_stitcher_free(zel_stitcher* stitcher) {
  return guarded(nullptr, [&] {
    if (stitcher != nullptr) takeObject<StitcherObject>(stitcher);
  });
}

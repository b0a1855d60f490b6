#pragma once

#include <ZELTarkaSDK/Result.h>
#include <ZELTarkaSDK/platform/media_library.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "bindings/gstreamer/settings.h"

namespace zel::gst {

// Stitches pictures, by the camera's lens offset.
//
// Owner:  the library must outlive it.
// Thread: any thread.
class Panoramas {
 public:
  Panoramas(platform::MediaLibrary& library, const Settings& settings);

  // Whether there can be pictures of that size.
  bool canStitch() const { return render_ != nullptr; }

  void setOffset(const std::string& offset);

  // Errors: null.
  platform::PixelBufferRef stitched(const platform::PixelBufferRef& picture);

  // That none was stitched.
  CameraError failure();
  // The same, where it was none of many, and told once.
  std::optional<CameraError> takeFailure();

 private:
  std::mutex mutex_;
  const std::unique_ptr<platform::FlatOffscreenRender> render_;
  std::string offset_;
  int failures_ = 0;  // since the latest that was stitched
  bool isTold_ = false;
};

}  // namespace zel::gst

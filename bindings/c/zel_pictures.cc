#include <ZELTarkaSDK/PreviewFormat.h>
#include <ZELTarkaSDK/zel.h>

#include <algorithm>

#include "bindings/c/formats.h"
#include "bindings/c/picture_object.h"
#include "bindings/c/subscriptions.h"

// Decoded pictures of the preview.

namespace zel::c {

std::uint8_t resolutionOf(const zel_format* format) {
  const zel_format given = takenOrZero(format, "format");
  const PreviewFormat wanted{given.width, given.height, given.fps};
  if (wanted == PreviewFormat{}) return kSmallestPreview;
  const auto found = std::ranges::find(kPreviewFormats, wanted);
  if (found == kPreviewFormats.end())
    refuse("the camera has no preview of " + std::to_string(wanted.width) + " x " + std::to_string(wanted.height) +
           " at " + std::to_string(wanted.fps));
  return static_cast<std::uint8_t>(found - kPreviewFormats.begin());
}

namespace {

// Like a camera's own default, since a picture is large.
constexpr std::size_t kPictureCapacity = 4;

std::function<void(const Picture&)> deliverTo(zel_picture_callback callback, void* user) {
  if (callback == nullptr) return {};
  return [callback, user](const Picture& picture) {
    zel_picture* handle = nullptr;
    // A picture for which there is no memory is lost.
    if (guarded(nullptr, [&] { handle = pictureHandle(picture); }) == ZEL_OK) callback(user, handle);
  };
}

zel_plane planeOf(const platform::PixelPlane& plane) { return {plane.data, plane.stride, plane.rowBytes, plane.rows}; }

zel_picture_data dataOf(const Picture& picture) {
  const platform::PixelBuffer& pixels = *picture.pixels;
  const platform::PictureColour colour = pixels.colour();
  return {0,
          pixels.width(),
          pixels.height(),
          picture.time,
          planeOf(pixels.luma()),
          planeOf(pixels.chroma()),
          colour.primaries,
          colour.transfer,
          static_cast<std::uint8_t>(colour.matrix)};
}

}  // namespace
}  // namespace zel::c

using namespace zel::c;

zel_status zel_format_code(const zel_format* format, uint8_t* code, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(code, "code");
    *code = resolutionOf(format);
  });
}

zel_status zel_pictures(zel_camera* camera, const zel_format* format, const zel_queue_options* queue,
                        zel_picture_callback callback, void* user, zel_subscription** subscription, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(subscription, "subscription");
    const zel::PictureOptions options{.resolution = resolutionOf(format), .queue = queueOf(queue, kPictureCapacity)};
    const auto object = objectOf<CameraObject>(camera);
    subscribe(object->with([&](zel::Camera& asked) { return asked.pictures(options); }), object->callsOnCameraThread(),
              deliverTo(callback, user), subscription);
  });
}

zel_status zel_next_picture(zel_subscription* subscription, int time_limit, zel_picture** picture, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(picture, "picture");
    *picture = pictureHandle(nextOf<zel::Picture>(subscription, time_limit));
  });
}

zel_status zel_begin_next_picture(zel_subscription* subscription, int time_limit, zel_picture** picture,
                                  zel_done_callback callback, void* user, zel_call** call, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(picture, "picture");
    beginNext<zel::Picture>(subscription, time_limit, {callback, user, call},
                            [picture](const zel::Picture& next) { *picture = pictureHandle(next); });
  });
}

zel_status zel_picture_get(zel_picture* picture, zel_picture_data* data, zel_error* error) {
  return guarded(error, [&] {
    checkSized(data, "data");
    give(data, dataOf(objectOf<PictureObject>(picture)->picture));
  });
}

zel_status zel_picture_free(zel_picture* picture) {
  return guarded(nullptr, [&] {
    if (picture != nullptr) takeObject<PictureObject>(picture);
  });
}

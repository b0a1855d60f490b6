#pragma once

#include <ZELTarkaSDK/CameraStream.h>

#include <memory>

#include "bindings/c/handles.h"

namespace zel::c {

// A picture that a program holds.
struct PictureObject {
  using Handle = zel_picture;
  static constexpr Kind kKind = Kind::picture;

  Picture picture;
};

inline zel_picture* pictureHandle(const Picture& picture) {
  return newHandle(std::make_shared<PictureObject>(PictureObject{picture}));
}

}  // namespace zel::c

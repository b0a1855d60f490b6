#pragma once

#include <cstddef>
#include <memory>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

#include "platform/render/picture.h"

namespace zel::render {

// A pool of pictures of one size: a picture returns to it when its last reference is released. Reusing one allocates
// nothing.
// Owner:  pictures may outlive the pool.
// Thread: any thread.
class PicturePool {
 public:
  // most: pictures in use at a time; each is created only when needed.
  PicturePool(PictureSize size, std::size_t most);

  // A picture with undefined pixels.
  // Errors: null while all are in use, and for an invalid size.
  std::shared_ptr<platform::MemoryPixelBuffer> take();

  // The number of pictures created.
  std::size_t made() const;

 private:
  struct Shelf;
  const std::shared_ptr<Shelf> shelf_;
};

}  // namespace zel::render

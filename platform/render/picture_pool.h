#pragma once

#include <cstddef>
#include <memory>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>
#include "platform/render/picture.h"

namespace zel::render {

// Pictures of one size that are used again and again: one comes back when its last reference goes. Taking one that was
// used before takes nothing from the heap.
// Owner:  pictures may outlive the pool.
// Thread: any thread.
class PicturePool {
 public:
  // most: pictures that may be in use at a time; none is made before it is needed.
  PicturePool(PictureSize size, std::size_t most);

  // A picture of anybody's former pixels.
  // Errors: null while all are in use, and for a size that no picture has.
  std::shared_ptr<platform::MemoryPixelBuffer> take();

  // How many have been made.
  std::size_t made() const;

 private:
  struct Shelf;
  const std::shared_ptr<Shelf> shelf_;
};

}  // namespace zel::render

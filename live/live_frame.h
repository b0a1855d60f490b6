#pragma once

#include <memory>

#include "media/media_pixel_buffer.h"

namespace zel {

// A picture on its way through the live pipeline; its time counts from the run's first sound.
using LiveFrame = std::shared_ptr<const orq::MediaPixelBuffer>;

}  // namespace zel

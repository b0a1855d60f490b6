#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/media_library.h"
#include "platform/memory_pixel_buffer.h"

namespace zel::platform {

// Renderers that fill an image of the asked size with the luma of the picture's first pixel and one more.
// Owner:  must outlive its renderers.
// Thread: one.
class ScriptedMediaLibrary final : public MediaLibrary {
 public:
  std::unique_ptr<FlatOffscreenRender> createFlatOffscreenRender(std::int32_t width, std::int32_t height) override {
    ++created;
    return std::make_unique<Render>(*this, width, height);
  }

  bool renders = true;     // false: every image fails
  int created = 0;         // renderers made
  std::string lastOffset;  // the last that any was given

 private:
  class Render final : public FlatOffscreenRender {
   public:
    Render(ScriptedMediaLibrary& library, std::int32_t width, std::int32_t height)
        : library_(library), width_(width), height_(height) {}
    void setOffset(std::string_view offset) override { library_.lastOffset = offset; }
    PixelBufferRef renderVideo(const PixelBufferRef& picture) override {
      if (!library_.renders) return nullptr;
      const auto luma = static_cast<std::uint8_t>(picture->luma().data[0] + 1);
      return MemoryPixelBuffer::filled(width_, height_, luma, 128, 128);
    }

   private:
    ScriptedMediaLibrary& library_;
    const std::int32_t width_, height_;
  };
};

}  // namespace zel::platform

#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/platform/media_library.h>
#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

#include "base/shared_value.h"

namespace zel::platform {

// Renderers that fill an image of the requested size with the luma of the picture's first pixel plus one, and views
// that show nothing. They record their calls.
// Owner:  must outlive its renderers.
// Thread: any thread; lastOffset, onRender and onDestroy while no renderer is in use.
class ScriptedMediaLibrary final : public MediaLibrary {
 public:
  // The calls of the latest view.
  struct View {
    Rectangle frame;
    std::int32_t renderType = -1;
    std::shared_ptr<ZELPreviewPlayer> player;
    std::string offset;
  };

  std::unique_ptr<FlatOffscreenRender> createFlatOffscreenRender(std::int32_t width, std::int32_t height) override {
    if (!makesRenderers) return nullptr;
    ++created;
    note("size " + std::to_string(width) + "x" + std::to_string(height));
    return std::make_unique<Render>(*this, width, height);
  }
  std::unique_ptr<RenderView> createRenderView(const Rectangle& frame, std::int32_t renderType) override {
    view = {frame, renderType, nullptr, ""};
    return std::make_unique<ScriptedView>(*this);
  }

  // The renderers' calls since the last take, a line each.
  std::vector<std::string> takeCalls() { return calls_.set({}); }

  std::atomic<bool> makesRenderers = true;
  std::atomic<bool> renders = true;  // false: every image fails
  std::atomic<int> created = 0;      // renderers created
  std::atomic<int> live = 0;         // renderers that have not been destroyed
  std::string lastOffset;            // the last offset set on any renderer
  std::function<void()> onRender;    // before each image
  std::function<void()> onDestroy;   // before a renderer is destroyed
  View view;

 private:
  void note(std::string call) {
    calls_.with([&call](std::vector<std::string>& calls) { calls.push_back(std::move(call)); });
  }

  class Render final : public FlatOffscreenRender {
   public:
    Render(ScriptedMediaLibrary& library, std::int32_t width, std::int32_t height)
        : library_(library), width_(width), height_(height) {
      ++library_.live;
    }
    ~Render() override {
      if (library_.onDestroy) library_.onDestroy();
      --library_.live;
    }

    void setOffset(std::string_view offset) override {
      library_.lastOffset = offset;
      library_.note("offset " + library_.lastOffset);
    }
    void setIsRenderVideo(bool on) override { library_.note(on ? "video" : "no video"); }
    void setLogoAngle(float angle) override { library_.note("angle " + std::to_string(angle)); }
    void setLogoImage(const std::optional<RgbaImage>& image) override {
      library_.note(image ? "logo of width " + std::to_string(image->width) : "no logo");
    }
    void setRemovePurple(bool on) override { library_.note(on ? "remove purple" : "keep purple"); }
    GraphicsContext makeContextCurrent() override {
      library_.note("own context");
      return &library_;
    }
    void restoreContext(GraphicsContext context) override {
      library_.note(context == &library_ ? "former context" : "some context");
    }
    PixelBufferRef renderVideo(const PixelBufferRef& picture) override {
      if (library_.onRender) library_.onRender();
      library_.note("render");
      if (!library_.renders) return nullptr;
      const auto luma = static_cast<std::uint8_t>(picture->luma().data[0] + 1);
      return MemoryPixelBuffer::filled(width_, height_, luma, 128, 128);
    }

   private:
    ScriptedMediaLibrary& library_;
    const std::int32_t width_, height_;
  };

  class ScriptedView final : public RenderView {
   public:
    explicit ScriptedView(ScriptedMediaLibrary& library) : library_(library) {}
    void playVideoStream(std::shared_ptr<ZELPreviewPlayer> player, std::string_view offset) override {
      library_.view.player = std::move(player);
      library_.view.offset = offset;
    }

   private:
    ScriptedMediaLibrary& library_;
  };

  Guarded<std::vector<std::string>> calls_;
};

}  // namespace zel::platform

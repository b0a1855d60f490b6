#include "bindings/gstreamer/buffers.h"

#include <gst/video/video.h>

#include <cstring>
#include <utility>

namespace zel::gst {
namespace {

template <class Kept>
GstMemory* wrapped(const std::uint8_t* data, std::size_t size, Kept kept) {
  const auto letGo = [](gpointer held) { delete static_cast<Kept*>(held); };
  return gst_memory_new_wrapped(GST_MEMORY_FLAG_READONLY, const_cast<std::uint8_t*>(data), size, 0, size,
                                new Kept(std::move(kept)), letGo);
}

std::size_t sizeOf(const platform::PixelPlane& plane) { return plane.stride * (plane.rows - 1) + plane.rowBytes; }

bool isLaidOutAs(const platform::PixelPlane& plane, const GstVideoInfo& info, int number) {
  return plane.stride == static_cast<std::size_t>(GST_VIDEO_INFO_PLANE_STRIDE(&info, number));
}

// Counts a picture that is in use downstream.
class Use {
 public:
  Use(platform::PixelBufferRef picture, std::shared_ptr<std::atomic<int>> count)
      : picture_(std::move(picture)), count_(std::move(count)) {
    ++*count_;
  }
  ~Use() { --*count_; }
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;

 private:
  const platform::PixelBufferRef picture_;
  const std::shared_ptr<std::atomic<int>> count_;
};

GstBuffer* wrappedPicture(const platform::PixelBuffer& picture, const std::shared_ptr<Use>& use) {
  const platform::PixelPlane luma = picture.luma(), chroma = picture.chroma();
  GstBuffer* const buffer = gst_buffer_new();
  gst_buffer_append_memory(buffer, wrapped(luma.data, sizeOf(luma), use));
  gst_buffer_append_memory(buffer, wrapped(chroma.data, sizeOf(chroma), use));
  const gsize offsets[GST_VIDEO_MAX_PLANES] = {0, sizeOf(luma)};
  const gint strides[GST_VIDEO_MAX_PLANES] = {static_cast<gint>(luma.stride), static_cast<gint>(chroma.stride)};
  gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_FORMAT_NV12,
                                 static_cast<guint>(picture.width()), static_cast<guint>(picture.height()), 2,
                                 const_cast<gsize*>(offsets), const_cast<gint*>(strides));
  return buffer;
}

void copyRows(const platform::PixelPlane& from, guint8* to, int stride) {
  for (std::size_t row = 0; row < from.rows; ++row)
    std::memcpy(to + row * static_cast<std::size_t>(stride), from.data + row * from.stride, from.rowBytes);
}

GstBuffer* copiedPicture(const platform::PixelBuffer& picture, const GstVideoInfo& info) {
  GstBuffer* const buffer = gst_buffer_new_allocate(nullptr, GST_VIDEO_INFO_SIZE(&info), nullptr);
  GstMapInfo map;
  if (buffer == nullptr || !gst_buffer_map(buffer, &map, GST_MAP_WRITE)) return buffer;
  copyRows(picture.luma(), map.data, GST_VIDEO_INFO_PLANE_STRIDE(&info, 0));
  copyRows(picture.chroma(), map.data + GST_VIDEO_INFO_PLANE_OFFSET(&info, 1), GST_VIDEO_INFO_PLANE_STRIDE(&info, 1));
  gst_buffer_unmap(buffer, &map);
  return buffer;
}

}  // namespace

GstBuffer* bufferOf(const ZELData& bytes) {
  GstBuffer* const buffer = gst_buffer_new();
  gst_buffer_append_memory(buffer, wrapped(bytes.bytes().data(), bytes.size(), bytes));
  return buffer;
}

GstBuffer* PictureBuffers::bufferOf(const platform::PixelBufferRef& picture, bool knowsStrides) {
  GstVideoInfo info;
  if (!gst_video_info_set_format(&info, GST_VIDEO_FORMAT_NV12, static_cast<guint>(picture->width()),
                                 static_cast<guint>(picture->height())))
    return nullptr;
  const bool isPlain = isLaidOutAs(picture->luma(), info, 0) && isLaidOutAs(picture->chroma(), info, 1) &&
                       sizeOf(picture->luma()) == GST_VIDEO_INFO_PLANE_OFFSET(&info, 1);
  const bool isWrapped = (knowsStrides || isPlain) && wrapped_->load() < kMostWrapped;
  return isWrapped ? wrappedPicture(*picture, std::make_shared<Use>(picture, wrapped_)) : copiedPicture(*picture, info);
}

}  // namespace zel::gst

#include "platform/ffmpeg/picture_memory.h"

#include <new>

namespace zel::platform {

// A picture's first plane, which stands for all of them: whoever shows the picture keeps it to the end.
struct PictureMemory::Counted {
  std::shared_ptr<std::atomic<std::int64_t>> held;
  std::int64_t bytes = 0;
  AVBufferRef* plane = nullptr;
};

void PictureMemory::serve(AVCodecContext& context) {
  context.opaque = this;
  context.get_buffer2 = take;
#if LIBAVCODEC_VERSION_MAJOR < 60
  // Later versions take every callback for one that any thread may call.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  context.thread_safe_callbacks = 1;
#pragma GCC diagnostic pop
#endif
}

int PictureMemory::take(AVCodecContext* context, AVFrame* frame, int flags) {
  if (const int fault = avcodec_default_get_buffer2(context, frame, flags); fault < 0) return fault;
  if (static_cast<const PictureMemory*>(context->opaque)->count(*frame)) return 0;
  av_frame_unref(frame);
  return AVERROR(ENOMEM);
}

bool PictureMemory::count(AVFrame& frame) const {
  std::int64_t bytes = 0;
  for (const AVBufferRef* plane : frame.buf) bytes += plane != nullptr ? static_cast<std::int64_t>(plane->size) : 0;
  std::unique_ptr<Counted> counted(new (std::nothrow) Counted{held_, bytes, frame.buf[0]});
  if (!counted || held_->load() + bytes > most_) return false;
  AVBufferRef* const plane = av_buffer_create(frame.buf[0]->data, frame.buf[0]->size, giveBack, counted.get(), 0);
  if (plane == nullptr) return false;
  held_->fetch_add(bytes);
  frame.buf[0] = plane;
  static_cast<void>(counted.release());
  return true;
}

void PictureMemory::giveBack(void* counted, std::uint8_t*) {
  const std::unique_ptr<Counted> ended(static_cast<Counted*>(counted));
  av_buffer_unref(&ended->plane);
  ended->held->fetch_sub(ended->bytes);
}

}  // namespace zel::platform

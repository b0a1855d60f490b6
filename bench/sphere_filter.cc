#include "bench/sphere_filter.h"

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
}

namespace zel::bench {

SphereFilter::SphereFilter(int sourceWidth, int sourceHeight, int threads, const std::string& options)
    : graph_(avfilter_graph_alloc()) {
  const std::string size = std::to_string(sourceWidth) + "x" + std::to_string(sourceHeight);
  ready_ = graph_ != nullptr && build("video_size=" + size + ":pix_fmt=yuv420p:time_base=1/30", options, threads);
}

SphereFilter::~SphereFilter() { avfilter_graph_free(&graph_); }

bool SphereFilter::build(const std::string& source, const std::string& options, int threads) {
  graph_->nb_threads = threads;
  AVFilterContext* sphere = nullptr;
  const auto add = [&](AVFilterContext** made, const char* name, const char* with) {
    return avfilter_graph_create_filter(made, avfilter_get_by_name(name), name, with, nullptr, graph_) >= 0;
  };
  return add(&source_, "buffer", source.c_str()) && add(&sphere, "v360", options.c_str()) &&
         add(&sink_, "buffersink", nullptr) && avfilter_link(source_, 0, sphere, 0) == 0 &&
         avfilter_link(sphere, 0, sink_, 0) == 0 && avfilter_graph_config(graph_, nullptr) >= 0;
}

std::shared_ptr<AVFrame> SphereFilter::filter(const AVFrame& source) {
  const auto release = [](AVFrame* frame) { av_frame_free(&frame); };
  std::shared_ptr<AVFrame> result(av_frame_alloc(), release);
  AVFrame* copy = av_frame_clone(&source);
  const int sent = av_buffersrc_add_frame(source_, copy);
  av_frame_free(&copy);
  return sent >= 0 && av_buffersink_get_frame(sink_, result.get()) >= 0 ? result : nullptr;
}

}  // namespace zel::bench

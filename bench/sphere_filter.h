#pragma once

#include <memory>
#include <string>

struct AVFilterContext;
struct AVFilterGraph;
struct AVFrame;

namespace zel::bench {

// FFmpeg's v360 filter, from a picture of two fisheye circles to an equirectangular one: what a user would take
// instead. Pictures are planar 4:2:0, for v360 has no NV12.
class SphereFilter {
 public:
  // options: v360's own.
  // Errors: ready() is false where this FFmpeg cannot build the filter.
  SphereFilter(int sourceWidth, int sourceHeight, int threads, const std::string& options);
  ~SphereFilter();
  SphereFilter(const SphereFilter&) = delete;
  SphereFilter& operator=(const SphereFilter&) = delete;

  bool ready() const { return ready_; }

  // Filters one picture without copying it.
  // Owner:  the caller gets the result; null on failure.
  std::shared_ptr<AVFrame> filter(const AVFrame& source);

 private:
  bool build(const std::string& source, const std::string& options, int threads);

  AVFilterGraph* graph_;
  AVFilterContext* source_ = nullptr;
  AVFilterContext* sink_ = nullptr;
  bool ready_;
};

}  // namespace zel::bench

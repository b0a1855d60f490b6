#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>

namespace zel::app {

// Measures how much of the requested duration has passed. Counts the stream's time, as written to the files. If that
// stands still, because the camera's clock does or nothing arrives from the camera, counts the host's time.
// Thread: one at a time.
class LiveDuration {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  // Units:  seconds. Nothing: it is never over.
  explicit LiveDuration(std::optional<double> asked) : asked_(asked) {}

  // Call it at least once a second. stream: the newest picture's time in microseconds; nothing before the first one.
  void note(TimePoint now, std::optional<std::int64_t> stream) {
    if (!stream) return;
    stream_ = static_cast<double>(*stream) / 1e6;
    if (!since_) since_ = {now, stream_};
    const double host = std::chrono::duration<double>(now - since_->host).count();
    const double gained = stream_ - since_->stream;
    if (gained * kSlowest >= host) {
      if (host >= kSettled) goOnFrom({now, stream_}, host - gained);
    } else if (host >= kPatience) {
      standsFor_ = host - gained;
    }
  }

  // How long the stream stood still in total.
  // Units:  seconds.
  double stoodStill() const { return stood_ + standsFor_; }
  // The remaining duration; nothing if no end was requested.
  // Units:  seconds.
  std::optional<double> left() const {
    if (!asked_) return std::nullopt;
    return std::max(0.0, *asked_ - stream_ - stoodStill());
  }
  bool isOver() const { return left() && *left() == 0; }

 private:
  static constexpr double kSlowest = 10;  // a stream that is that many times slower than the host stands still
  static constexpr double kPatience = 3;  // seconds; shorter gaps are filled by late pictures
  static constexpr double kSettled = 1;   // seconds

  struct Moment {
    TimePoint host;
    double stream;
  };

  void goOnFrom(Moment moment, double missing) {
    if (standsFor_ > 0) stood_ += std::max(0.0, missing);
    standsFor_ = 0;
    since_ = moment;
  }

  const std::optional<double> asked_;
  double stream_ = 0;
  std::optional<Moment> since_;  // when it last advanced
  double standsFor_ = 0;         // by now
  double stood_ = 0;             // before that
};

}  // namespace zel::app

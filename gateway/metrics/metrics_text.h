#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zel::gateway {

// Prometheus's text format, version 0.0.4: families of samples, each with its help and its type.
class MetricsText {
 public:
  enum class Type { counter, gauge };
  using Labels = std::vector<std::pair<std::string_view, std::string_view>>;

  // A metric; the samples that follow belong to it. One without samples is left out.
  void family(std::string_view name, Type type, std::string_view help);
  void sample(double value, const Labels& labels = {});

  std::string take() { return std::move(text_); }

  static constexpr std::string_view kContentType = "text/plain; version=0.0.4; charset=utf-8";

 private:
  std::string text_, name_, head_;  // head_: of a family without a sample so far
};

}  // namespace zel::gateway

#include "gateway/api/rows_of_metrics.h"

#include <memory>
#include <utility>

#include "gateway/metrics/gateway_metrics.h"

namespace zel::gateway {

std::vector<Row> metricsRows(const Cameras& cameras,
                             std::function<std::vector<OutputStatus>(const HeldCamera&)> outputs) {
  static constexpr char kType[] = "text/plain; version=0.0.4; charset=utf-8";
  const auto show = [&cameras, outputs = std::move(outputs)](const RowCall&, const Respond& respond) {
    std::vector<CameraMetrics> all;
    for (const auto& one : cameras.all()) {
      all.push_back({one->serialNumber(), one->status(), one->camera().allStatistics(), one->live().feed().statistics(),
                     outputs(*one)});
    }
    Response response{.type = kType};
    response.content = metricsText(processMetrics(), all);
    respond(std::move(response));
  };
  return {{"GET",
           "/metrics",
           "metrics",
           "What the gateway and its cameras count, in Prometheus's text format",
           {{200, kType, "", "the metrics"}},
           show}};
}

}  // namespace zel::gateway

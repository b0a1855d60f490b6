#pragma once

#include <functional>
#include <vector>

#include "gateway/api/row.h"
#include "gateway/cameras/cameras.h"
#include "gateway/outputs/output_request.h"

namespace zel::gateway {

// What the gateway and its cameras count, for Prometheus.
//
// cameras: must outlive the rows. outputs: those of a camera; must not wait.
std::vector<Row> metricsRows(const Cameras& cameras,
                             std::function<std::vector<OutputStatus>(const HeldCamera&)> outputs);

}  // namespace zel::gateway

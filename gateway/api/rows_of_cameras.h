#pragma once

#include <chrono>
#include <vector>

#include "gateway/api/row.h"
#include "gateway/cameras/cameras.h"

namespace zel::gateway {

// The list of cameras, what each is, calls of its operations, and recordings on it.
//
// cameras: must outlive the rows.
std::vector<Row> cameraRows(Cameras& cameras, std::chrono::milliseconds timeLimit);

}  // namespace zel::gateway

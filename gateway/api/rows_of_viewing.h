#pragma once

#include <chrono>
#include <vector>

#include "gateway/api/row.h"
#include "gateway/cameras/cameras.h"

namespace zel::gateway {

// What who looks at a camera needs beside its stream: its lenses, and the server's time.
//
// cameras: must outlive the rows.
std::vector<Row> viewingRows(Cameras& cameras, std::chrono::milliseconds timeLimit);

}  // namespace zel::gateway

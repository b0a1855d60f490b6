#pragma once

#include <vector>

#include "gateway/api/output_desk.h"
#include "gateway/api/row.h"
#include "gateway/cameras/cameras.h"

namespace zel::gateway {

// Files and servers that a camera's stream is written to while it runs: their list, their beginning and their end.
//
// cameras, desk: must outlive the rows.
std::vector<Row> outputRows(const Cameras& cameras, OutputDesk& desk);

}  // namespace zel::gateway

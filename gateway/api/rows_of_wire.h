#pragma once

#include <vector>

#include "gateway/api/row.h"
#include "gateway/line/shared_lines.h"

namespace zel::gateway {

// A camera's own byte stream for a host on this machine, by an upgrade of its connection. On gateway.sock alone.
//
// lines: must outlive the rows.
std::vector<Row> wireRows(SharedLines& lines);

}  // namespace zel::gateway

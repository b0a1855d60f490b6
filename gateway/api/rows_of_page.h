#pragma once

#include <vector>

#include "gateway/api/row.h"

namespace zel::gateway {

// The page and all that it loads, out of the program.
std::vector<Row> pageRows();

}  // namespace zel::gateway

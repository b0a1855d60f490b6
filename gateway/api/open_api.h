#pragma once

#include <nlohmann/json.hpp>
#include <vector>

#include "gateway/api/row.h"

namespace zel::gateway {

// The description of the rows in OpenAPI 3.1. Operations that can be called stand in it with their arguments, out of
// the catalogue. Rows without answers are not described.
nlohmann::ordered_json openApi(const std::vector<Row>& rows, bool needsToken);

// The row that gives the description of the others, which it describes with itself.
Row openApiRow(std::vector<Row> others, bool needsToken);

}  // namespace zel::gateway

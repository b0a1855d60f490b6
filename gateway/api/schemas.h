#pragma once

#include <nlohmann/json.hpp>

namespace zel::gateway {

// The schemas of bodies and answers, by their names in the rows.
nlohmann::ordered_json schemas();

}  // namespace zel::gateway

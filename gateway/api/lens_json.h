#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace zel::gateway {

// What a renderer needs to know of a camera's lenses, in the words of docs/lens-offset.md. Of a text that makes no
// sense there are no lenses, and `fault` says why.
nlohmann::ordered_json lensJson(const std::string& offset);

}  // namespace zel::gateway

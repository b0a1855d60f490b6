#pragma once

#include <optional>
#include <string>

namespace zel {

// What went wrong, as a sentence for people; nothing where it went well.
using Fault = std::optional<std::string>;

}  // namespace zel

#pragma once

#include <string>

namespace zel::platform {

// Letters, digits and "-_.~" as they are, every other byte as % and two upper-case hexadecimal digits.
std::string percentEncoded(const std::string& text);

}  // namespace zel::platform

#pragma once

#include <string>
#include <system_error>

namespace zel::platform {

// The system's text for errno.
inline std::string errorText(int number) { return std::generic_category().message(number); }

}  // namespace zel::platform

#pragma once

#include <string>
#include <system_error>

namespace zel::platform {

// What the system calls an error's number (errno).
inline std::string errorText(int number) { return std::generic_category().message(number); }

}  // namespace zel::platform

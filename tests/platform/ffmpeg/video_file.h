#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zel::test {

// The H.264 of a file of the folder of real media, as it is, with start codes and parameter sets. Empty where there is
// none.
std::vector<std::uint8_t> realVideo(const std::string& name);

}  // namespace zel::test

#pragma once

#include <cstdint>
#include <vector>

namespace zel::test {

// H.264 of the largest pictures that are decoded, 8192x4608, of which each refers to sixteen others: a key picture of
// 147 kB, and others of a few bytes. Each unit has a start code in front.
std::vector<std::uint8_t> vastParameterSets();
std::vector<std::uint8_t> vastKeyPicture();
// number: from 1 on.
std::vector<std::uint8_t> vastPicture(int number);

}  // namespace zel::test

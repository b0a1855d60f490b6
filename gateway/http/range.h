#pragma once

#include <cstdint>
#include <string_view>
#include <variant>

namespace zel::gateway {

// Units: bytes.
struct ByteRange {
  std::uint64_t offset = 0, length = 0;

  bool operator==(const ByteRange&) const = default;
};

struct WholeFile {
  bool operator==(const WholeFile&) const = default;
};
struct NoSuchRange {
  bool operator==(const NoSuchRange&) const = default;
};

// What a Range header asks for of so many bytes. Several ranges at once, other units and what cannot be read are the
// whole file, as HTTP allows.
std::variant<WholeFile, ByteRange, NoSuchRange> rangeIn(std::string_view header, std::uint64_t size);

}  // namespace zel::gateway

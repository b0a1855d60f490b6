// Offset text and records on hostile bytes: the first byte chooses which of the two the rest is.
//
// The text carries single-precision numbers and reading truncates, so that a value may come back a thousandth, or for
// large ones a rounding step, beside what it was. Everything else must come back as it was written.

#include <ZELTarkaSDK/ZELMediaOffset.h>

#include <array>
#include <bit>
#include <string>

#include "base/text.h"
#include "fuzz/fuzz_input.h"

namespace {

using zel::fuzz::require;

constexpr std::int64_t kExactBelow = 1 << 22;  // values up to there come back within a thousandth

// One more step for each power of two that the value is beyond what single precision holds.
std::int64_t tolerance(std::int64_t value) { return 1 + std::abs(value) / kExactBelow; }

void requireClose(const ZELMediaOffset& one, const ZELMediaOffset& other) {
  for (std::size_t lens = 0; lens < other.lensCount; ++lens) {
    for (std::size_t i = 0; i < one.lenses[lens].p.size(); ++i) {
      const std::int64_t value = std::int32_t{one.lenses[lens].p[i]};
      require(std::abs(value - std::int32_t{other.lenses[lens].p[i]}) <= tolerance(value));
    }
  }
}

// What was written reads as what was meant, and after some trips the text stays as it is.
void travel(ZELMediaOffset offset) {
  std::string text = getOffsetFromZELMediaOffset(offset);
  for (int trips = 0; trips < 64; ++trips) {
    const ZELMediaOffset read = getMediaOffsetFromOffset(text);
    require(read.lensCount <= 2 && (trips == 0 || read.lensCount == offset.lensCount));
    if (read.lensCount != 0) {  // without a lens, "(null)" stands where the reader looks for the header
      require(read.valueA == offset.valueA && read.valueB == offset.valueB && read.valueC == offset.valueC);
    }
    requireClose(offset, read);
    std::string again = getOffsetFromZELMediaOffset(read);
    if (again == text) return;
    text = std::move(again);
    offset = read;
  }
  require(false);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zel::fuzz::Input input(data, size);
  if (input.byte() % 2 == 0) {
    const std::string text(zel::asText(input.take(size)));
    getOriginOffsetFromOffset(text);
    travel(getMediaOffsetFromOffset(text));
    return 0;
  }
  std::array<std::uint8_t, sizeof(ZELMediaOffset)> record{};
  const zel::ByteView bytes = input.take(record.size());
  std::copy(bytes.begin(), bytes.end(), record.begin());
  travel(std::bit_cast<ZELMediaOffset>(record));
  return 0;
}
